// Every spelling of a name that the emitted classes bear, made in this one place.
//
// From the attribute `vlanBinding` come the accessors vlanBinding, vlanBindingIs, newVlanBinding,
// ..., the handler onVlanBinding, the member class QorVlanBinding and the iterators; from the class
// `LogicalSwitch` its factory logicalSwitchFactory.
#ifndef MODELC_CHECK_SPELLING_H
#define MODELC_CHECK_SPELLING_H

#include <string>
#include <vector>

namespace Modelc {

class Spelling {
  public:
    explicit Spelling(std::string name);

    std::string const& name() const { return name_; }
    std::string const& upper() const { return upper_; }
    std::string field() const { return name_ + "_"; }
    std::string pendingField() const { return name_ + "Pending_"; }
    std::string setter() const { return name_ + "Is"; }
    std::string builder() const { return "new" + upper_; }
    std::string remover() const { return name_ + "Del"; }
    std::string pendingReader() const { return "qor" + upper_ + "Pending"; }
    std::string allRemover() const { return name_ + "DelAll"; }
    std::string notifier() const { return name_ + "Notify"; }
    std::string count() const { return name_ + "s"; }
    std::string memberReader() const { return "qor" + upper_; }
    std::string iterator() const { return name_ + "Iterator"; }
    std::string iteratorConst() const { return name_ + "IteratorConst"; }
    std::string memberIterator() const { return "qor" + upper_ + "Iterator"; }
    std::string handler() const { return "on" + upper_; }
    std::string immediateHandler() const { return handler() + "qorImmediate"; }
    std::string memberClass() const { return "Qor" + upper_; }
    std::string iteratorClass() const { return upper_ + "Iterator"; }
    std::string iteratorConstClass() const { return upper_ + "IteratorConst"; }
    std::string memberIteratorClass() const { return "Qor" + upper_ + "Iterator"; }
    std::string descriptor() const { return upper_ + "Attr"; }
    std::string fieldDescriptor() const { return upper_ + "Field"; }

    // Of the attribute log.
    std::string streamDescriptor() const { return upper_ + "Stream"; }
    std::string serializer() const { return "qorHandle" + upper_ + "Serialize"; }
    std::string memberSerializer() const { return serializer() + "Sing"; }
    std::string collectionSerializer() const { return serializer() + "Coll"; }
    std::string adapterSetter() const { return name_ + "NboAttrLogAdapterIs"; }
    std::string adapterRemover() const { return name_ + "NboAttrLogAdapterDel"; }
    std::string dirty() const { return "qorIs" + upper_ + "Dirty"; }
    std::string dirtyBuilder() const { return "newQorIs" + upper_ + "Dirty"; }
    std::string dirtyClass() const { return "QorQorIs" + upper_ + "Dirty"; }
    std::string dirtyIteratorClass() const { return "QorIs" + upper_ + "DirtyIterator"; }
    std::string synced() const { return "qor" + upper_ + "HasSynced"; }

    // The functions of its class that a scalar, a single child and a collection take up besides the
    // name itself.
    std::vector<std::string> scalarAccessors() const;
    std::vector<std::string> childAccessors() const;
    std::vector<std::string> keyedAccessors() const;

  private:
    std::string name_;
    std::string upper_;
};

// macVniPair of MacVniPair.
std::string lowerFirst(std::string name);
// VGW_TABLES_LOGICAL_SWITCH_H of vgw/tables/LogicalSwitch.h.
std::string includeGuard(std::string const& header);

}  // namespace Modelc

#endif
