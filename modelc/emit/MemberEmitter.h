// What one member of an entity puts into each place of the class's files.
//
// There is one class for each kind of attribute, and one for operations; makeMemberEmitter()
// chooses. Each method is one place in a file, and most places stay empty for most kinds. The texts
// are in long form; Layout brings them to the line length.
#ifndef MODELC_EMIT_MEMBEREMITTER_H
#define MODELC_EMIT_MEMBEREMITTER_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <modelc/check/Model.h>
#include <modelc/check/Spelling.h>
#include <modelc/emit/Holes.h>

namespace Modelc {

class MemberEmitter {
  public:
    MemberEmitter(Entity const& entity, std::string const& name, Doc const& doc);
    MemberEmitter(MemberEmitter const&) = delete;
    MemberEmitter& operator=(MemberEmitter const&) = delete;
    virtual ~MemberEmitter() = default;

    // The name of the descriptor; empty if a base has it.
    virtual std::string descriptorName() const { return spelling_.descriptor(); }
    // Names of member classes and iterators.
    virtual std::string aliases() const { return {}; }
    // What the class declares, with its documentation.
    virtual std::string declarations() const = 0;
    virtual std::string field() const { return {}; }
    virtual std::string handlers() const { return {}; }
    // The notifiee's record of keys that wait for delivery.
    virtual std::string pendingKey() const { return {}; }
    // How such a record is emptied.
    virtual std::string pendingKeyDrop() const { return {}; }
    virtual std::string descriptor() const = 0;
    // Definitions in the header, behind the descriptors.
    virtual std::string inlineDefinitions() const { return {}; }
    virtual std::string definitions() const { return {}; }
    virtual std::string handlerDefinitions() const { return {}; }
    // A forwarding notifiee: the overrides of the handlers, and the keys that wait made readable.
    virtual std::string forwards() const { return {}; }
    // What the generic wrapper does when it is told.
    virtual std::string wrapperDefinitions() const { return {}; }
    // Headers that the declarations need.
    virtual std::vector<std::string> headers() const = 0;

    // An operation that classes below may override: such stand in front of all accessors.
    virtual bool isIntroduced() const { return false; }
    virtual bool isKeyed() const { return false; }
    // The class owns what the attribute holds, and lets it go when it ends.
    virtual bool isOwner() const { return false; }

  protected:
    std::string fillIn(std::string_view text) const { return fill(text, holes_); }
    void hole(std::string const& name, std::string value) { holes_[name] = std::move(value); }
    Unit const& unit() const { return *entity_.unit; }
    Entity const& entity() const { return entity_; }
    Spelling const& spelling() const { return spelling_; }

  private:
    Entity const& entity_;
    Spelling spelling_;
    Holes holes_;
};

std::unique_ptr<MemberEmitter> makeMemberEmitter(Entity const& entity, Member const& member);

}  // namespace Modelc

#endif
