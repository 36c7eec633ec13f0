#include "Peers.h"

#ifdef VGW_BENCH_GOBJECT_2_0

namespace Bench {

namespace {

struct BenchSwitch {
    GObject parent;
    guint number;
};

constexpr guint numberProperty = 1;

void setNumber(GObject* object, guint, GValue const* value, GParamSpec*) {
    reinterpret_cast<BenchSwitch*>(object)->number = g_value_get_uint(value);
}

void getNumber(GObject* object, guint, GValue* value, GParamSpec*) {
    g_value_set_uint(value, reinterpret_cast<BenchSwitch*>(object)->number);
}

void classInit(gpointer type, gpointer) {
    auto* const objects = static_cast<GObjectClass*>(type);
    objects->set_property = setNumber;
    objects->get_property = getNumber;
    g_object_class_install_property(objects, numberProperty,
                                    g_param_spec_uint("number", nullptr, nullptr, 0, G_MAXUINT, 0,
                                                      static_cast<GParamFlags>(G_PARAM_READWRITE)));
}

GType switchType() {
    static GType const type =
        g_type_register_static_simple(G_TYPE_OBJECT, "BenchSwitch", sizeof(GObjectClass), classInit,
                                      sizeof(BenchSwitch), nullptr, GTypeFlags{});
    return type;
}

void onNumber(GObject*, GParamSpec*, gpointer heard) { ++*static_cast<std::uint64_t*>(heard); }

}  // namespace

GObjectPeer::GObjectPeer(unsigned count, std::uint64_t& heard)
    : object_(static_cast<GObject*>(g_object_new(switchType(), nullptr))) {
    for (unsigned i = 0; i < count; ++i) {
        g_signal_connect_data(object_, "notify::number", reinterpret_cast<GCallback>(onNumber),
                              &heard, nullptr, GConnectFlags{});
    }
}

GObjectPeer::~GObjectPeer() { g_object_unref(object_); }

void GObjectPeer::emit(std::uint32_t number) { g_object_set(object_, "number", number, nullptr); }

}  // namespace Bench

#endif
