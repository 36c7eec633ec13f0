#include <modelc/emit/Emit.h>

#include <modelc/emit/AttrLogEmitter.h>
#include <modelc/emit/EntityEmitter.h>
#include <modelc/emit/EnumerationEmitter.h>
#include <modelc/emit/Layout.h>
#include <modelc/emit/ListEmitter.h>
#include <modelc/emit/RegistrationEmitter.h>
#include <modelc/emit/RegistryPlace.h>
#include <modelc/emit/ValueEmitter.h>
#include <modelc/emit/ValueWrapperEmitter.h>
#include <modelc/emit/WrapperEmitter.h>

namespace Modelc {
namespace {

std::string sourceOf(std::string const& header) {
    return header.substr(0, header.size() - 1) + "cc";
}

struct FilesOf {
    std::vector<OutputFile>& files;

    void operator()(Enumeration const* one) const {
        add(one->type->header, EnumerationEmitter(*one));
        files.push_back({registryHeader(*one->unit, one->name), layout(wrapperHeader(*one))});
    }
    void operator()(Value const* one) const {
        add(one->type->header, ValueEmitter(*one));
        files.push_back({registryHeader(*one->unit, one->name), layout(wrapperHeader(*one))});
    }
    void operator()(Entity const* one) const {
        add(one->type->header, EntityEmitter(*one));
        add(registryHeader(*one->unit, one->name), WrapperEmitter(*one));
        add(adapterHeader(*one), AttrLogEmitter(*one));
    }

    template <typename Emitter>
    void add(std::string const& header, Emitter const& emitter) const {
        files.push_back({header, layout(emitter.header())});
        files.push_back({sourceOf(header), layout(emitter.source())});
    }
};

}  // namespace

std::vector<OutputFile> emit(Unit const& unit) {
    std::vector<OutputFile> result;
    for (Class const& one : unit.classes) std::visit(FilesOf{result}, one);
    if (unit.classes.empty()) return result;
    result.push_back({listHeader(unit), layout(listText(unit))});
    RegistrationEmitter const registration(unit);
    result.push_back({registrationHeader(unit), layout(registration.header())});
    result.push_back({sourceOf(registrationHeader(unit)), layout(registration.source())});
    return result;
}

}  // namespace Modelc
