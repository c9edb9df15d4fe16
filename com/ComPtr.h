#pragma once

#include <utility>

#include <unknwn.h>
#include <windows.h>

namespace HLDataSrvc::Com {

/// Holds a reference to a COM object, or none, and lets go of it at its end.
template <typename T>
class ComPtr {
 public:
  ComPtr() = default;
  /// Adds a reference.
  explicit ComPtr(T* pointer) : m_pointer(pointer) {
    if (m_pointer) m_pointer->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.m_pointer) {}
  ComPtr(ComPtr&& other) noexcept : m_pointer(std::exchange(other.m_pointer, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(m_pointer, other.m_pointer);
    return *this;
  }
  ~ComPtr() {
    if (m_pointer) m_pointer->Release();
  }

  T* Get() const { return m_pointer; }
  T* operator->() const { return m_pointer; }
  explicit operator bool() const { return m_pointer != nullptr; }

  /// Where a callee puts a reference that becomes ours. To be called on an empty one only.
  T** Put() { return &m_pointer; }
  void** PutVoid() { return reinterpret_cast<void**>(&m_pointer); }
  /// Hands the reference to the caller, who has to release it.
  T* Detach() { return std::exchange(m_pointer, nullptr); }

  /// Another interface of the same object; empty when it has none such.
  template <typename Other>
  ComPtr<Other> As() const {
    ComPtr<Other> other;
    if (m_pointer) m_pointer->QueryInterface(__uuidof(Other), other.PutVoid());
    return other;
  }

 private:
  T* m_pointer = nullptr;
};

/// Makes an object of a class whose references count from 0.
template <typename T, typename... Arguments>
ComPtr<T> Make(Arguments&&... arguments) {
  return ComPtr<T>(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace HLDataSrvc::Com
