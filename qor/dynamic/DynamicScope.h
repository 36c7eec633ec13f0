// The class and the attribute at hand. The templates behind compiled classes take an attribute's
// id, name and types as constants of a descriptor type. What these are for an attribute that is
// only described is known when it runs: the descriptors of <qor/dynamic/DynamicAttributes.h> read
// it from the innermost scope of their thread. So one machine serves both.
//
// Whoever calls such a template for a described attribute opens a scope first. Scopes nest, and
// each ends with the call that opened it: whatever handlers run within, the descriptors mean the
// same attribute again when they return.
#ifndef QOR_DYNAMIC_DYNAMIC_SCOPE_H
#define QOR_DYNAMIC_DYNAMIC_SCOPE_H

#include <qor/dynamic/DynamicType.h>

namespace Qor {

class DynamicScope {
  public:
    /// Of a class; of one attribute unless that is null.
    explicit DynamicScope(DynamicType const& type,
                          DynamicAttribute const* attribute = nullptr) noexcept
        : type_(type), attribute_(attribute), outer_(innermost) {
        innermost = this;
    }
    ~DynamicScope() { innermost = outer_; }
    DynamicScope(DynamicScope const&) = delete;
    DynamicScope& operator=(DynamicScope const&) = delete;

    static DynamicType const& type() noexcept { return innermost->type_; }
    /// REQUIRES: the innermost scope is that of an attribute
    static DynamicAttribute const& attribute() noexcept { return *innermost->attribute_; }

  private:
    static thread_local DynamicScope const* innermost;

    DynamicType const& type_;
    DynamicAttribute const* const attribute_;
    DynamicScope const* const outer_;
};

}  // namespace Qor

#endif
