// Lists of generic arguments: what operations are called with and instances are made from.
#ifndef QOR_GENERIC_GENERIC_LIST_H
#define QOR_GENERIC_GENERIC_LIST_H

#include <qor/collections/LinkedQueue.h>
#include <qor/generic/GenericIf.h>

namespace Qor {

class QOR_EXPORT GenericIf::List {
  public:
    using Queue = LinkedQueue<Qor::Ptr<GenericIf>>;
    /// The record by which a list's queue is read through genericValue.
    static QorType* _fwkType();
};

/// A list as an argument. An element may be null where an operation takes a null reference.
class QOR_EXPORT GenericIf::List_ : public GenericIf {
  public:
    List_() : GenericIf(false) {}
    explicit List_(List::Queue queue) : GenericIf(false), queue_(std::move(queue)) {}
    ~List_() override;

    void enq(GenericIf::Ptr argument) { queue_.enq(std::move(argument)); }
    QorType* fwkType() const override;
    void const* genericValue(Qor::Ptr<QorType const> const& type) const override;
    GenericIf::Ptr genericClone() const override;

  private:
    List::Queue queue_;
};

/// The arguments of one call, taken in order.
class QOR_EXPORT GenericArguments {
  public:
    /// Raises TypeException "List" for null and "Qor::GenericIf::List_" for another wrapper.
    explicit GenericArguments(GenericIf const* list);

    /// The next argument; null if it is a null reference. Raises TypeException with the argument's
    /// name if none is left.
    GenericIf::Ptr next(char const* argument);
    /// Raises UnknownArgException with that name if any is left.
    void end(char const* operation) const;

  private:
    GenericIf::List::Queue left_;
};

}  // namespace Qor

#endif
