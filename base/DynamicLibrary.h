#pragma once

// A dynamic library loaded by absolute path, and the functions that it exports.

#include <filesystem>
#include <memory>
#include <optional>

/// Owns one loaded library; unloads it when destroyed, unless it was leaked on purpose. Movable only.
class CDynamicLibrary {
public:
    /// Nothing when the file is not a library that this program can load. `file` is made absolute first, so
    /// that no search path is consulted.
    static std::optional<CDynamicLibrary> Load(const std::filesystem::path& file);

    CDynamicLibrary(CDynamicLibrary&&) noexcept = default;
    CDynamicLibrary& operator=(CDynamicLibrary&&) noexcept = default;
    ~CDynamicLibrary() = default;

    /// The exported function, or null. The caller names its true type.
    template <class Function>
    Function Find(const char* name) const
    {
        return reinterpret_cast<Function>(FindAddress(name));  // NOLINT: the type is the interface's promise
    }
    /// The system's handle: an HMODULE on Windows.
    void* Handle() const { return m_pHandle.get(); }
    /// Gives up ownership: the library stays loaded until the process ends.
    void Leak() { static_cast<void>(m_pHandle.release()); }

private:
    using AnyFunction = void (*)();
    struct Unload {
        void operator()(void* handle) const;
    };

    explicit CDynamicLibrary(void* handle) : m_pHandle(handle) {}
    AnyFunction FindAddress(const char* name) const;

    std::unique_ptr<void, Unload> m_pHandle;
};
