#include "Subject.h"

#include <ends/attrlog/Holder.h>
#include <ends/attrlog/Knot.h>
#include <ends/attrlog/Labels.h>
#include <ends/attrlog/Leaf.h>
#include <ends/attrlog/Links.h>
#include <ends/attrlog/Marks.h>
#include <ends/attrlog/Note.h>
#include <ends/attrlog/Rack.h>
#include <ends/attrlog/Shelf.h>

#include <qor/attrlog/dir/DirAdapter.h>

#include <array>

namespace Ends {

namespace {

using Qor::make;
using Qor::Name;
using Qor::Ptr;

template <class Top>
class SubjectOf : public Subject {
  public:
    Ptr<Qor::Entity> top(End end) const override { return Ptr<Qor::Entity>(at(end).ptr()); }

  protected:
    Ptr<Top> const& at(End end) const { return tops_[end]; }
    // Of each value that is written another, so that no two writes look the same.
    Qor::U64 fresh() { return ++last_; }

  private:
    std::array<Ptr<Top>, greatestEnds> tops_{make<Top>(Name("top")), make<Top>(Name("top")),
                                             make<Top>(Name("top"))};
    Qor::U64 last_ = 0;
};

std::string inWords(Leaf const* leaf) {
    return leaf == nullptr ? "nothing" : std::to_string(leaf->number());
}

Name const key("k");

// A child comes and goes; the second change is one of its value.
class OwnedRow final : public SubjectOf<Shelf> {
    bool change(End end, unsigned which) override {
        auto const& shelf = at(end);
        auto const there = shelf->leaf(key);
        if (which == 1) {
            if (there) there->numberIs(fresh());
            return static_cast<bool>(there);
        }
        if (there) {
            shelf->leafDel(key);
        } else {
            shelf->leafIs(key)->numberIs(fresh());
        }
        return true;
    }
    std::string picture(End end) const override { return inWords(at(end)->leaf(key).ptr()); }
};

class SingleChild final : public SubjectOf<Holder> {
    bool change(End end, unsigned which) override {
        auto const& holder = at(end);
        auto const there = holder->only();
        if (which == 1) {
            if (there) there->numberIs(fresh());
            return static_cast<bool>(there);
        }
        if (there) {
            holder->onlyDel();
        } else {
            holder->onlyIs(Name("only"))->numberIs(fresh());
        }
        return true;
    }
    std::string picture(End end) const override { return inWords(at(end)->only().ptr()); }
};

// An entry comes and goes; the second change puts another in its place, the third changes its
// state, the fourth its value.
class Entry final : public SubjectOf<Qor::Dir> {
    using State = Qor::Dir::EntryState;
    Ptr<Leaf> leaf(End end) const {
        return Ptr<Leaf>(dynamic_cast<Leaf*>(at(end)->entry(key).ptr()));
    }
    void enter(End end) {
        auto const fresh_ = make<Leaf>(key);
        fresh_->numberIs(fresh());
        at(end)->entryIs(key, Ptr<Qor::Entity>(fresh_.ptr()));
    }
    bool change(End end, unsigned which) override {
        auto const there = leaf(end);
        if (which != 0 && !there) return false;
        if (which == 2) {
            bool const isStale = at(end)->qorEntry(key)->state() == State::stale;
            at(end)->entryStateIs(key, isStale ? State::ready : State::stale);
        } else if (which == 3) {
            there->numberIs(fresh());
        } else if (which == 0 && there) {
            at(end)->entryDel(key);
        } else {
            enter(end);
        }
        return true;
    }
    std::string picture(End end) const override {
        auto const there = leaf(end);
        if (!there) return "nothing";
        bool const isStale = at(end)->qorEntry(key)->state() == State::stale;
        return inWords(there.ptr()) + (isStale ? " stale" : "");
    }
};

// An entry comes and goes; with the second change it is one of a class that not all ends know, with
// the third that one's child comes and goes. What the original has of that class, others need not
// have: but for it there is nothing then.
template <unsigned lackedBy>
class EntryOfLackedClass final : public SubjectOf<Qor::Dir> {
    static bool isKnownTo(End end) { return (lackedBy >> end & 1U) == 0; }
    Ptr<Shelf> lacked(End end) const {
        return Ptr<Shelf>(dynamic_cast<Shelf*>(this->at(end)->entry(key).ptr()));
    }
    bool change(End end, unsigned which) override {
        auto const& dir = this->at(end);
        auto const there = dir->entry(key);
        if (which == 2) {
            auto const shelf = lacked(end);
            if (!shelf) return false;
            if (shelf->leaf(key)) {
                shelf->leafDel(key);
            } else {
                shelf->leafIs(key)->numberIs(this->fresh());
            }
        } else if (which == 1) {
            if (!isKnownTo(end)) return false;
            dir->entryIs(key, Ptr<Qor::Entity>(make<Shelf>(key).ptr()));
        } else if (there) {
            dir->entryDel(key);
        } else {
            auto const leaf = make<Leaf>(key);
            leaf->numberIs(this->fresh());
            dir->entryIs(key, Ptr<Qor::Entity>(leaf.ptr()));
        }
        return true;
    }
    std::string picture(End end) const override {
        auto const there = this->at(end)->entry(key);
        if (!there) return nothing;
        if (lacked(end)) return end == 0 ? nothing : lackedAbove;
        return inWords(static_cast<Leaf const*>(there.ptr()));
    }
};

// The same entity comes and goes, and comes back to the other of two names.
class EntryThatComesBack final : public SubjectOf<Qor::Dir> {
    std::array<Name, 2> const keys_{Name("k"), Name("l")};
    std::array<Ptr<Leaf>, greatestEnds> last_;  // by end, that which went

    Ptr<Qor::Entity> there(End end, unsigned which) const { return at(end)->entry(keys_[which]); }
    bool change(End end, unsigned which) override {
        auto& last = last_[end];
        if (auto const gone = at(end)->entryDel(keys_[which])) {
            last = Ptr<Leaf>(static_cast<Leaf*>(gone.ptr()));
            return true;
        }
        bool const isFree = last && there(end, 0) != last && there(end, 1) != last;
        if (!isFree) last = make<Leaf>(key);
        last->numberIs(fresh());
        at(end)->entryIs(keys_[which], Ptr<Qor::Entity>(last.ptr()));
        return true;
    }
    std::string picture(End end) const override {
        std::string words;
        for (unsigned which = 0; which < 2; ++which) {
            words += inWords(static_cast<Leaf const*>(there(end, which).ptr())) + " ";
        }
        return words;
    }
};

// A child comes and goes, and what it holds itself.
class Grandchild final : public SubjectOf<Rack> {
    bool change(End end, unsigned which) override {
        auto const& rack = at(end);
        auto const there = rack->shelf(key);
        if (which == 0 && there) {
            rack->shelfDel(key);
        } else if (which == 0) {
            rack->shelfIs(key);
        } else if (there && there->leaf(key)) {
            there->leafDel(key);
        } else if (there) {
            there->leafIs(key)->numberIs(fresh());
        }
        return which == 0 || there;
    }
    std::string picture(End end) const override {
        auto const there = at(end)->shelf(key);
        return there ? "shelf of " + inWords(there->leaf(key).ptr()) : "nothing";
    }
};

constexpr unsigned many = 12;  // more than are owed singly

Qor::String8 nameOf(unsigned number) { return Qor::String8(std::to_string(number)); }

// Two rows come and go; with the third change so many others that the collection is owed whole.
class RowAmongMany final : public SubjectOf<Shelf> {
    std::array<Name, 2> const keys_{Name("k"), Name("l")};
    bool change(End end, unsigned which) override {
        auto const& shelf = at(end);
        if (which == 2) {
            for (unsigned i = 0; i < many; ++i) shelf->leafIs(Name(nameOf(i)));
            for (unsigned i = 0; i < many; ++i) shelf->leafDel(Name(nameOf(i)));
        } else if (shelf->leaf(keys_[which])) {
            shelf->leafDel(keys_[which]);
        } else {
            shelf->leafIs(keys_[which])->numberIs(fresh());
        }
        return true;
    }
    std::string picture(End end) const override {
        std::string words = std::to_string(at(end)->leafs()) + ": ";
        for (auto const& one : keys_) words += inWords(at(end)->leaf(one).ptr()) + " ";
        return words;
    }
};

// The same of flags.
class FlagAmongMany final : public SubjectOf<Marks> {
    std::array<Qor::String8, 2> const keys_{Qor::String8("k"), Qor::String8("l")};
    bool change(End end, unsigned which) override {
        auto const& marks = at(end);
        if (which == 2) {
            for (unsigned i = 0; i < many; ++i) marks->markIs(nameOf(i), true);
            for (unsigned i = 0; i < many; ++i) marks->markDel(nameOf(i));
        } else if (marks->mark(keys_[which])) {
            marks->markDel(keys_[which]);
        } else {
            marks->markIs(keys_[which], true);
        }
        return true;
    }
    std::string picture(End end) const override {
        std::string words = std::to_string(at(end)->marks()) + ": ";
        for (auto at_ = at(end)->markIteratorConst(); at_; ++at_) {
            words += std::string(at_.key().view()) + (at_.value() ? "+ " : "- ");
        }
        return words;
    }
};

class Flag final : public SubjectOf<Marks> {
    Qor::String8 const key_{"k"};
    bool change(End end, unsigned which) override {
        auto const& marks = at(end);
        bool const isThere = marks->marks() != 0;
        if (which == 1) {
            if (isThere) marks->markIs(key_, !marks->mark(key_));
            return isThere;
        }
        if (isThere) {
            marks->markDel(key_);
        } else {
            marks->markIs(key_, true);
        }
        return true;
    }
    std::string picture(End end) const override {
        auto const& marks = at(end);
        if (marks->marks() == 0) return "nothing";
        return marks->mark(key_) ? "yes" : "no";
    }
};

// Three keys that tie stand at the original from the first. One comes and goes; with the second
// change another goes and comes back, and so stands behind the rest.
class TiedFlags final : public SubjectOf<Knot> {
  public:
    TiedFlags() {
        for (Place const place : places_) at(0)->tagIs(Tag(place, red), true);
    }

  private:
    static constexpr std::array<Place, 3> places_{near, middle, far};

    static bool has(Knot const& knot, Tag const& tag) {
        for (auto at_ = knot.tagIteratorConst(); at_; ++at_) {
            if (at_.key() == tag) return true;
        }
        return false;
    }
    bool change(End end, unsigned which) override {
        auto const& knot = at(end);
        Tag const tag(which == 0 ? near : middle, red);
        bool const isThere = has(*knot, tag);
        bool const value = isThere && !knot->tag(tag);
        if (isThere) knot->tagDel(tag);
        if (which == 1 || !isThere) knot->tagIs(tag, value);
        return true;
    }
    std::string picture(End end) const override {
        std::string words;
        for (Place const place : places_) {
            Tag const tag(place, red);
            if (!has(*at(end), tag)) {
                words += "nothing ";
            } else {
                words += at(end)->tag(tag) ? "yes " : "no ";
            }
        }
        return words;
    }
};

// Of texts of `length` and more.
template <std::size_t length>
Qor::String8 textOf(Qor::U64 number) {
    return Qor::String8(std::to_string(number) + std::string(length, '.'));
}

std::string shortened(Qor::String8 const& text) {
    return std::string(text.view().substr(0, text.view().find('.'))) + "/" +
           std::to_string(text.length());
}

template <std::size_t length>
class Label final : public SubjectOf<Labels> {
    bool change(End end, unsigned which) override {
        auto const& labels = at(end);
        bool const isThere = labels->labels() != 0;
        if (which == 1 && !isThere) return false;
        if (which == 0 && isThere) {
            labels->labelDel(7);
        } else {
            labels->labelIs(7, textOf<length>(this->fresh()));
        }
        return true;
    }
    std::string picture(End end) const override {
        return at(end)->labels() == 0 ? "nothing" : shortened(at(end)->label(7));
    }
    using SubjectOf<Labels>::at;
};

class Scalar final : public SubjectOf<Leaf> {
    bool change(End end, unsigned) override {
        at(end)->numberIs(fresh());
        return true;
    }
    std::string picture(End end) const override { return inWords(at(end).ptr()); }
};

template <std::size_t length>
class Text final : public SubjectOf<Note> {
    bool change(End end, unsigned) override {
        this->at(end)->textIs(textOf<length>(this->fresh()));
        return true;
    }
    std::string picture(End end) const override { return shortened(this->at(end)->text()); }
};

// A child comes and goes, and takes the reference to it along; the second change sets or removes
// that.
class Reference final : public SubjectOf<Links> {
    bool change(End end, unsigned which) override {
        auto const& links = at(end);
        auto const there = links->leaf(key);
        bool const isReferred = links->links() != 0;
        if (which == 1) {
            if (!there && !isReferred) return false;
            if (isReferred) {
                links->linkDel(3);
            } else {
                links->linkIs(3, there);
            }
            return true;
        }
        if (there) {
            links->linkDel(3);
            links->leafDel(key);
        } else {
            links->leafIs(key)->numberIs(fresh());
        }
        return true;
    }
    std::string picture(End end) const override {
        auto const& links = at(end);
        std::string words = inWords(links->leaf(key).ptr());
        if (links->links() != 0) words += ", link to " + inWords(links->link(3).ptr());
        return words;
    }
    void tidyUp(End end) override {
        auto const& links = at(end);
        auto const target = links->link(3);
        if (links->links() != 0 && target != links->leaf(key)) links->linkDel(3);
    }
};

}  // namespace

std::vector<Sort> const& sorts() {
    static std::vector<Sort> const all{
        {"OwnedRow", 1, 0, false, &made<OwnedRow>},
        {"OwnedRowAndValue", 2, 1, true, &made<OwnedRow>},
        {"SingleChild", 1, 0, false, &made<SingleChild>},
        {"SingleChildAndValue", 2, 1, true, &made<SingleChild>},
        {"Entry", 1, 0, false, &made<Entry>},
        {"EntryThatIsReplaced", 2, 1, false, &made<Entry>},
        {"EntryWithState", 3, 2, false, &made<Entry>},
        {"EntryAndValue", 4, 3, true, &made<Entry>},
        {"EntryThatTheOriginalLacks", 3, 2, true, &made<EntryOfLackedClass<1>>, false, 0,
         "Ends::Shelf", 1},
        {"EntryThatTheCopyLacks", 3, 2, true, &made<EntryOfLackedClass<2>>, true, 0, "Ends::Shelf",
         2},
        {"EntryThatComesBack", 2, 1, false, &made<EntryThatComesBack>, true},
        {"Grandchild", 2, 1, true, &made<Grandchild>},
        {"TwoRows", 2, 1, false, &made<RowAmongMany>},
        {"RowAmongMany", 3, 3, false, &made<RowAmongMany>},
        {"TwoFlags", 2, 1, true, &made<FlagAmongMany>},
        {"FlagAmongMany", 3, 3, true, &made<FlagAmongMany>},
        {"Flag", 2, 1, true, &made<Flag>},
        {"TiedFlags", 2, 2, true, &made<TiedFlags>, false, Knot::TagAttr::id},
        {"Label", 2, 1, true, &made<Label<1>>},
        {"LongLabel", 2, 3, true, &made<Label<40000>>},
        {"Scalar", 1, 0, true, &made<Scalar>},
        {"Text", 1, 0, true, &made<Text<1>>},
        {"LongText", 1, 1, true, &made<Text<40000>>},
        {"Reference", 2, 1, true, &made<Reference>},
    };
    return all;
}

}  // namespace Ends
