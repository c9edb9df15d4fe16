#pragma once

#include <atomic>
#include <cstddef>
#include <utility>
#include <vector>

#include <ocidl.h>
#include <windows.h>

#include "com/ComPtr.h"
#include "com/Module.h"

namespace HLDataSrvc::Com {

/// One of the system's interfaces for walking over things, over the things as they stood when it was made.
/// `Thing` copies with new references, and is handed out with `HandOut(thing, element)`.
template <typename Interface, typename Element, typename Thing, void (*HandOut)(const Thing&, Element&)>
class Enumeration final : public Interface {
 public:
  explicit Enumeration(std::vector<Thing> things, std::size_t next = 0)
      : m_things(std::move(things)), m_next(next) {}
  Enumeration(const Enumeration&) = delete;
  Enumeration& operator=(const Enumeration&) = delete;

  STDMETHODIMP QueryInterface(REFIID id, void** object) noexcept override {
    if (!object) return E_POINTER;
    *object = id == IID_IUnknown || id == __uuidof(Interface) ? static_cast<Interface*>(this) : nullptr;
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() noexcept override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }

  STDMETHODIMP Next(ULONG wanted, Element* elements, ULONG* fetched) noexcept override {
    if (!elements || (!fetched && wanted != 1)) return E_POINTER;
    ULONG count = 0;
    for (; count < wanted && m_next < m_things.size(); ++count)
      HandOut(m_things[m_next++], elements[count]);
    if (fetched) *fetched = count;
    return count == wanted ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) noexcept override {
    const bool hasAll = count <= m_things.size() - m_next;
    m_next = hasAll ? m_next + count : m_things.size();
    return hasAll ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() noexcept override {
    m_next = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(Interface** copy) noexcept override {
    if (!copy) return E_POINTER;
    *copy = nullptr;
    try {
      *copy = Make<Enumeration>(m_things, m_next).Detach();
      return S_OK;
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }

 private:
  ~Enumeration() = default;

  const Module::Use m_use;
  const std::vector<Thing> m_things;
  std::size_t m_next;
  std::atomic<ULONG> m_references{0};
};

}  // namespace HLDataSrvc::Com
