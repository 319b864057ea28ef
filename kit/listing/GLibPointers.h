#pragma once

#include <gio/gio.h>

#include <memory>

/// Owners of what GLib and GIO hand out.
namespace ombrel::GLib {

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
};
/// Of an object, by one reference.
template <typename T>
using Owned = std::unique_ptr<T, Unref>;
using CString = std::unique_ptr<char, decltype([](char* text) { g_free(text); })>;
using Failure = std::unique_ptr<GError, decltype([](GError* error) { g_error_free(error); })>;

} // namespace ombrel::GLib
