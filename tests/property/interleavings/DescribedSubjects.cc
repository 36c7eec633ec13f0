// The sorts of attributes once more, of a row of ends whose middle knows the class by its
// description alone. All that is done goes through the generic interface.
#include "Subject.h"

#include "../../unit/dynamic/Described.h"
#include "../../unit/dynamic/Tree.h"

#include <qor/dynamic/DynamicAdapter.h>

#include <vgw/attrlog/Status.h>

#include <array>

namespace Ends {

namespace {

using Qor::AttributeId;
using Qor::Name;
using Tree::OpId;
using Tree::Wrapper;

class DescribedSubject : public Subject {
  public:
    Qor::Ptr<Qor::Entity> top(End end) const final { return tops_[end]; }
    std::string picture(End end) const override { return Tree::dump(tops_[end]); }

  protected:
    explicit DescribedSubject(char const* type)
        : tops_{compiled(type), Described::twin(type).newInstance(Qor::Name("top")),
                compiled(type)} {}
    Wrapper at(End end) const { return Tree::wrapperOf(tops_[end]); }
    // Of each value that is written another, so that no two writes look the same.
    std::string fresh() { return std::to_string(++last_); }

  private:
    static Qor::Ptr<Qor::Entity> compiled(char const* type) {
        return Qor::QorType::type(Qor::Name(type))->newInstance(Qor::Name("top"));
    }

    std::array<Qor::Ptr<Qor::Entity>, greatestEnds> tops_;
    unsigned last_ = 0;
};

Qor::QorAttr const& attributeOf(Wrapper const& row, AttributeId id) {
    return *row->fwkType()->attr(id);
}

Wrapper keyOf(Wrapper const& row, AttributeId id, char const* text) {
    return Tree::valueOf(*attributeOf(row, id).keyType(), text);
}

// What stands under the key, if something does.
Wrapper memberOf(Wrapper const& row, AttributeId id, Wrapper const& key) {
    bool const isThere = row->attributeOp(id, OpId::opExists, key)->strRep() == "true";
    return isThere ? row->attributeOp(id, OpId::opGet, key) : nullptr;
}

void valueIs(Wrapper const& row, AttributeId id, std::string const& text) {
    row->attributeOp(id, OpId::opSet, nullptr,
                     Tree::valueOf(*attributeOf(row, id).valueType(), text));
}

void memberIs(Wrapper const& row, AttributeId id, Wrapper const& key, std::string const& text) {
    row->attributeOp(id, OpId::opSet, key, Tree::valueOf(*attributeOf(row, id).valueType(), text));
}

constexpr AttributeId tunnelKey = 388;      // of a logical switch
constexpr AttributeId remoteLocator = 268;  // of the database

// A child comes and goes; the second change is one of its value.
class DescribedRow final : public DescribedSubject {
  public:
    DescribedRow() : DescribedSubject("Vgw::HwVtepOvsdb") {}

  private:
    static constexpr AttributeId rows = 263;
    bool change(End end, unsigned which) override {
        auto const database = at(end);
        auto const key = keyOf(database, rows, "'k'");
        auto there = memberOf(database, rows, key);
        if (which == 1 && !there) return false;
        if (which == 0 && there) {
            database->attributeOp(rows, OpId::opDel, key);
            return true;
        }
        if (which == 0) {
            database->attributeOp(rows, OpId::opSet, nullptr, Tree::listOf(key));
            there = memberOf(database, rows, key);
        }
        valueIs(there, tunnelKey, fresh());
        return true;
    }
};

class DescribedChild final : public DescribedSubject {
  public:
    DescribedChild() : DescribedSubject("Vgw::Status") {}

  private:
    static constexpr AttributeId only = 258;
    static constexpr AttributeId number = 259;
    bool change(End end, unsigned which) override {
        auto const status = at(end);
        auto there = status->attributeOp(only);
        bool const isThere = static_cast<bool>(there->entity());
        if (which == 1 && !isThere) return false;
        if (which == 0 && isThere) {
            status->attributeOp(only, OpId::opDel);
            return true;
        }
        if (which == 0) {
            auto const name = Tree::valueOf(*Qor::Name::_fwkType(), "'only'");
            status->attributeOp(only, OpId::opSet, nullptr, Tree::listOf(name));
            there = status->attributeOp(only);
        }
        valueIs(there, number, fresh());
        return true;
    }
};

// A value of a port under a key comes and goes; with the second change it becomes another.
class DescribedMember : public DescribedSubject {
  protected:
    DescribedMember(AttributeId id, char const* key)
        : DescribedSubject("Vgw::PhysicalPort"), id_(id), key_(key) {}
    // The text of a value other than what is there, if something is.
    virtual std::string next(Wrapper const& there) = 0;

  private:
    bool change(End end, unsigned which) final {
        auto const port = at(end);
        auto const key = keyOf(port, id_, key_);
        auto const there = memberOf(port, id_, key);
        if (which == 1 && !there) return false;
        if (which == 0 && there) {
            port->attributeOp(id_, OpId::opDel, key);
        } else {
            memberIs(port, id_, key, next(there));
        }
        return true;
    }

    AttributeId const id_;
    char const* const key_;
};

class DescribedFlag final : public DescribedMember {
  public:
    DescribedFlag() : DescribedMember(390, "'k'") {}  // a fault

  private:
    std::string next(Wrapper const& there) override {
        return there && there->strRep() == "true" ? "false" : "true";
    }
};

// A text of `length` and more under a key.
template <std::size_t length>
class DescribedLabel final : public DescribedMember {
  public:
    DescribedLabel() : DescribedMember(388, "7") {}  // a binding

  private:
    std::string next(Wrapper const&) override {
        return "'" + fresh() + std::string(length, '.') + "'";
    }
};

class DescribedScalar final : public DescribedSubject {
  public:
    DescribedScalar() : DescribedSubject("Vgw::LogicalSwitch") {}

  private:
    bool change(End end, unsigned) override {
        valueIs(at(end), tunnelKey, fresh());
        return true;
    }
};

template <std::size_t length>
class DescribedText final : public DescribedSubject {
  public:
    DescribedText() : DescribedSubject("Vgw::LogicalSwitch") {}

  private:
    static constexpr AttributeId text = 387;
    bool change(End end, unsigned) override {
        valueIs(at(end), text, "'" + fresh() + std::string(length, '.') + "'");
        return true;
    }
};

// A child comes and goes, and takes the reference to it along; the second change sets or removes
// that.
class DescribedReference final : public DescribedSubject {
  public:
    DescribedReference() : DescribedSubject("Vgw::HwVtepOvsdb") {}

  private:
    static constexpr AttributeId links = 260;
    static constexpr AttributeId rows = 266;
    static constexpr AttributeId description = 387;  // of a physical switch
    bool change(End end, unsigned which) override {
        auto const database = at(end);
        auto const key = keyOf(database, rows, "'k'");
        auto const link = keyOf(database, links, "'link'");
        auto const there = memberOf(database, rows, key);
        auto const referred = memberOf(database, links, link);
        if (which == 1 && !there && !referred) return false;
        if (referred) database->attributeOp(links, OpId::opDel, link);
        if (which == 1) {
            if (!referred) database->attributeOp(links, OpId::opSet, link, there);
        } else if (there) {
            database->attributeOp(rows, OpId::opDel, key);
        } else {
            database->attributeOp(rows, OpId::opSet, nullptr, Tree::listOf(key));
            valueIs(memberOf(database, rows, key), description, "'" + fresh() + "'");
        }
        return true;
    }
    void tidyUp(End end) override { Tree::dropDangling(top(end)); }
};

// Two keys that tie where the class is compiled refer to rows, at the original from the first, and
// so does one in front of them. One comes and goes; with the second change the other goes and comes
// back, and refers to another row.
class DescribedTies final : public DescribedSubject {
  public:
    DescribedTies() : DescribedSubject("Vgw::HwVtepOvsdb") {
        auto const database = at(0);
        for (char const* const name : names_) {
            database->attributeOp(rows, OpId::opSet, nullptr,
                                  Tree::listOf(keyOf(database, rows, name)));
        }
        for (unsigned which : {2U, 1U, 0U}) setLink(database, which, names_[0]);
    }

  private:
    static constexpr AttributeId rows = 267;
    static constexpr char const* names_[] = {"'l'", "'m'"};

    static Wrapper linkOf(Wrapper const& database, unsigned which) {
        constexpr char const* addresses[] = {"10.0.237.115", "10.1.19.59", "192.0.2.1"};
        Vgw::PhysicalLocatorKey const key(Vgw::vxlan_over_ipv4, Kelp::IpAddr(addresses[which]));
        std::string const text(valueToStrep(key).view());
        bool const isCompiled = attributeOf(database, remoteLocator).keyType() ==
                                Qor::QorType::type(Name("Vgw::PhysicalLocatorKey"));
        return keyOf(database, remoteLocator,
                     (isCompiled ? text : Described::renamed(text)).c_str());
    }
    static void setLink(Wrapper const& database, unsigned which, char const* name) {
        auto const row = memberOf(database, rows, keyOf(database, rows, name));
        if (row) database->attributeOp(remoteLocator, OpId::opSet, linkOf(database, which), row);
    }
    bool change(End end, unsigned which) override {
        auto const database = at(end);
        auto const link = linkOf(database, which);
        auto const there = memberOf(database, remoteLocator, link);
        bool const isSecond = there && there->entity() && there->entity()->name().view() == "m";
        if (there) database->attributeOp(remoteLocator, OpId::opDel, link);
        if (which == 1 || !there) setLink(database, which, names_[isSecond ? 0 : 1]);
        return true;
    }
};

}  // namespace

std::vector<Sort> const& sorts() {
    static std::vector<Sort> const all{
        {"DescribedRow", 1, 2, false, &made<DescribedRow>},
        {"DescribedRowAndValue", 2, 3, true, &made<DescribedRow>},
        {"DescribedChild", 1, 2, false, &made<DescribedChild>},
        {"DescribedChildAndValue", 2, 3, true, &made<DescribedChild>},
        {"DescribedFlag", 2, 3, true, &made<DescribedFlag>},
        {"DescribedLabel", 2, 3, true, &made<DescribedLabel<1>>},
        {"DescribedLongLabel", 2, 3, true, &made<DescribedLabel<40000>>},
        {"DescribedScalar", 1, 2, true, &made<DescribedScalar>},
        {"DescribedText", 1, 2, true, &made<DescribedText<1>>},
        {"DescribedLongText", 1, 3, true, &made<DescribedText<40000>>},
        {"DescribedReference", 2, 3, true, &made<DescribedReference>},
        {"DescribedTies", 2, 3, true, &made<DescribedTies>, false, remoteLocator},
    };
    return all;
}

}  // namespace Ends
