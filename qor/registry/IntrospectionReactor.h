// Hears what the libraries of a process say of their types while they describe them, and decides
// whether they do. It is on by default.
//
// A library asks isOn before it describes. One that finds it off leaves word (describeLaterIs), and
// is called when it is switched on. Switched off again, what has been described stays. Everything
// here happens on the loading thread, or on the thread that switches.
#ifndef QOR_REGISTRY_INTROSPECTION_REACTOR_H
#define QOR_REGISTRY_INTROSPECTION_REACTOR_H

#include <vector>

#include <qor/registry/QorType.h>

namespace Qor {

class QOR_EXPORT IntrospectionReactor : public VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<IntrospectionReactor>;

    /// The one of the process.
    static Ptr global();

    bool isOn() const noexcept { return isOn_; }
    /// Switched on, it calls all who have left word, each once, in the order in which they did.
    /// What one of them raises comes out of here after the others were called.
    void isOnIs(bool isOn);
    /// Has `describe(unit)` called when this is switched on; whoever asks twice is called once.
    void describeLaterIs(void (*describe)(void* unit), void* unit);

    // The scopes. What is closed must be what was opened last; anything else is a fault of the
    // describing library and stops the process.

    void handleNameSpace(char const* name);
    void handleType(QorType::PtrConst const& type, QorType::PtrConst const& base);
    /// Makes an attribute on the type's tree, appends it to the type and announces it.
    QorAttr::Ptr defNoninstantiatingAttr(QorType* owner, Name const& name, QorType* valueType,
                                         QorType* keyType, AttrFlags flags,
                                         AttrIntrospectionFlags introspection, AttributeId id);
    void handleAttr(QorAttr::Ptr const& attribute);
    void handleAttrContextExit();
    void handleScopeExit();

    /// Scopes that are open now: name spaces, types and attributes.
    std::size_t depth() const noexcept { return scopes_.size(); }
    /// Types and attributes that have been announced in this process.
    U32 typesHeard() const noexcept { return typesHeard_; }
    U32 attributesHeard() const noexcept { return attributesHeard_; }

  private:
    enum class Scope : U8 { nameSpace, type, attribute };
    struct Waiting {
        void (*describe)(void* unit);
        void* unit;
        bool operator==(Waiting const&) const = default;
    };

    void open(Scope scope, bool allowed);
    void close(bool allowed);
    bool isIn(Scope scope) const noexcept { return !scopes_.empty() && scopes_.back() == scope; }

    bool isOn_ = true;
    U32 typesHeard_ = 0;
    U32 attributesHeard_ = 0;
    std::vector<Scope> scopes_;
    std::vector<Waiting> waiting_;
};

}  // namespace Qor

#endif
