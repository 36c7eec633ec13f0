// What one attribute of an entity puts into the files of the class's stream adapter. There is one
// class for each kind of record; makeAttrLogMember() chooses. Each method is one place in a file.
#ifndef MODELC_EMIT_ATTRLOGMEMBER_H
#define MODELC_EMIT_ATTRLOGMEMBER_H

#include <memory>
#include <string>
#include <string_view>

#include <modelc/check/Model.h>
#include <modelc/check/Spelling.h>
#include <modelc/emit/Holes.h>

namespace Modelc {

class AttrLogMember {
  public:
    // `base` is the base of the attribute's stream descriptor.
    AttrLogMember(Entity const& entity, Attribute const& attribute, std::string const& base);
    AttrLogMember(AttrLogMember const&) = delete;
    AttrLogMember& operator=(AttrLogMember const&) = delete;
    virtual ~AttrLogMember() = default;

    std::string streamName() const { return Spelling(attribute_.name).streamDescriptor(); }
    // What the adapter declares and defines.
    virtual std::string declarations() const = 0;
    virtual std::string definitions() const = 0;
    std::string stream() const;
    // What the state of a resynchronisation has for the attribute.
    virtual std::string flowOut() const;
    // The companion's handler.
    virtual std::string forwarding() const;
    // The header of the adapter that the attribute's entities have; empty if it holds none.
    virtual std::string adapterHeaderOfTarget() const { return {}; }

  protected:
    std::string fillIn(std::string_view text) const { return fill(text, holes_); }
    void hole(std::string const& name, std::string value) { holes_[name] = std::move(value); }
    Attribute const& attribute() const { return attribute_; }
    Unit const& unit() const { return *entity_.unit; }

  private:
    Entity const& entity_;
    Attribute const& attribute_;
    Holes holes_;
};

// Null for an attribute that does not travel.
std::unique_ptr<AttrLogMember> makeAttrLogMember(Entity const& entity, Attribute const& attribute);

}  // namespace Modelc

#endif
