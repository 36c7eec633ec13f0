// Opens and closes a library of entity classes a few times, and then works with one of its classes
// by name, as whoever looked it up while the library was open would.
#include <qor/entity/Entity.h>
#include <qor/registry/QorType.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace {

void need(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

}  // namespace

int main(int count, char** arguments) {
    need(count == 3, "LIBRARY CLASS");
    Qor::Name const name(arguments[2]);
    Qor::QorType* type = nullptr;
    for (int round = 0; round < 3; ++round) {
        void* const library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
        need(library != nullptr, "the library can't be opened");
        Qor::QorType* const found = Qor::QorType::type(name);
        need(found != nullptr, "the class is not known");
        need(type == nullptr || found == type, "the class is another one");
        type = found;
        dlclose(library);
    }
    auto const entity = type->newInstance("one");
    need(entity->fwkType()->fullName() == name, "the class has another name");
    need(Qor::QorType::type(name) == type, "the class is not known any more");
}
