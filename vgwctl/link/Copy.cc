#include <vgwctl/link/Copy.h>

#include <qor/tree/EntityPath.h>

namespace Vgwctl {
namespace {

std::vector<Qor::String8> elementsOf(std::string const& path) {
    try {
        return Qor::pathElements(Qor::String8(std::string_view(path)));
    } catch (Qor::RangeException const& e) {
        throw Failure(e.what());
    }
}

}  // namespace

Copy::Copy(std::string path) : path_(std::move(path)) { elementsOf(path_); }

Copy::~Copy() { Qor::rootDirIs(nullptr); }

void Copy::mountOn(Connection& connection, Deadline const& deadline) {
    Qor::Entity::Ptr const entity = connection.mount(path_, false, entity_, deadline);
    if (entity != entity_) entityIs(entity);
}

void Copy::beginMountOn(Connection& connection) { connection.beginMount(path_, false, entity_); }

bool Copy::takeFrom(Connection& connection) {
    Qor::Entity::Ptr const entity = connection.mounted();
    if (entity && entity != entity_) entityIs(entity);
    return entity != nullptr;
}

void Copy::entityIs(Qor::Entity::Ptr const& entity) {
    entity_ = entity;
    auto const elements = elementsOf(path_);
    if (elements.size() == 1) {
        base_ = Qor::dynamicCast<Qor::Dir>(entity);
        if (!base_) throw Failure(path_ + " is no directory; mount what stands below one");
        return Qor::rootDirIs(base_);
    }
    base_ = Qor::make<Qor::Dir>(Qor::Name(elements.front()));
    Qor::Dir::Ptr at = base_;
    for (std::size_t n = 1; n + 1 < elements.size(); ++n) {
        auto const below = Qor::make<Qor::Dir>(Qor::Name(elements[n]));
        at->entryIs(Qor::Name(elements[n]), below);
        at = below;
    }
    at->entryIs(Qor::Name(elements.back()), entity);
    Qor::rootDirIs(base_);
}

Qor::Entity& Copy::root() const { return *entity_; }

}  // namespace Vgwctl
