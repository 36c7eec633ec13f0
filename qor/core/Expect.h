// A scope in which exceptions of one id are expected. Scopes nest and belong to their thread.
// Cost: two stores to the thread's own memory; asking walks the open scopes, innermost first.
#ifndef QOR_CORE_EXPECT_H
#define QOR_CORE_EXPECT_H

#include <qor/core/Exception.h>
#include <qor/core/Export.h>

namespace Qor {

class Expect {
  public:
    explicit Expect(Exception::Id id) noexcept : id_(id), outer_(innermost_) { innermost_ = this; }
    ~Expect() { innermost_ = outer_; }
    Expect(Expect const&) = delete;
    Expect& operator=(Expect const&) = delete;

    // Whether a scope for that id is open on this thread. Id 0 announces nothing, so it is never
    // expected.
    static bool isExpected(Exception::Id id) noexcept {
        if (id == Exception::noId) return false;
        for (auto const* scope = innermost_; scope != nullptr; scope = scope->outer_) {
            if (scope->id_ == id) return true;
        }
        return false;
    }

  private:
    Exception::Id id_;
    Expect const* outer_;

    // The library is loaded with the program, so that its one word has a fixed place and needs no
    // look-up.
    [[gnu::tls_model(
        "initial-exec")]] QOR_EXPORT static constinit thread_local Expect const* innermost_;
};

}  // namespace Qor

#endif
