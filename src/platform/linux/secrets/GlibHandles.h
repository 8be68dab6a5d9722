// Owners of objects from GLib and libsecret. Only included by the files that use these libraries.
#pragma once

#include <libsecret/secret.h>

#include <memory>
#include <string>
#include <vector>

namespace orlune {

template <auto release>
struct GlibRelease {
    template <typename Type>
    void operator()(Type* handle) const {
        release(handle);
    }
};

template <typename Type>
using GlibObject = std::unique_ptr<Type, GlibRelease<g_object_unref>>;
using GlibMainContext = std::unique_ptr<GMainContext, GlibRelease<g_main_context_unref>>;
using GlibSource = std::unique_ptr<GSource, GlibRelease<g_source_unref>>;
using GlibText = std::unique_ptr<char, GlibRelease<g_free>>;
using GlibTable = std::unique_ptr<GHashTable, GlibRelease<g_hash_table_unref>>;
using GlibVariant = std::unique_ptr<GVariant, GlibRelease<g_variant_unref>>;
using GlibVariantType = std::unique_ptr<GVariantType, GlibRelease<g_variant_type_free>>;
using SecretValueHandle = std::unique_ptr<SecretValue, GlibRelease<secret_value_unref>>;

/// Takes ownership of a list and of the reference to each object in it.
template <typename Type>
std::vector<GlibObject<Type>> takeList(GList* list) {
    std::vector<GlibObject<Type>> objects;
    for (auto* link = list; link; link = link->next) {
        objects.emplace_back(static_cast<Type*>(link->data));
    }
    g_list_free(list);
    return objects;
}

/// Receives the error of one call: `finish(result, error.receive())`.
class GlibError {
  public:
    GlibError() = default;
    GlibError(const GlibError&) = delete;
    GlibError& operator=(const GlibError&) = delete;
    ~GlibError() { g_clear_error(&error_); }

    GError** receive() {
        g_clear_error(&error_);
        return &error_;
    }
    explicit operator bool() const { return error_ != nullptr; }
    bool is(GQuark domain, int code) const { return g_error_matches(error_, domain, code) != 0; }
    GQuark domain() const { return error_->domain; }
    int code() const { return error_->code; }
    /// The provider's text, without the name of the error in front.
    std::string text() {
        g_dbus_error_strip_remote_error(error_);
        return error_->message;
    }

  private:
    GError* error_ = nullptr;
};

} // namespace orlune
