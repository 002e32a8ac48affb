#include "connection_point.h"

#include <new>

#include "file_encoder_h.h"

namespace fe::ocx {

namespace {

// A snapshot enumerator over COM pointers or CONNECTDATA, holding a
// reference to each item.
template <typename Interface, typename Item>
class Enumerator final : public Interface {
 public:
  Enumerator(const IID& iid, std::vector<Item> items) : iid_(iid), items_(std::move(items)) {
    for (Item& item : items_)
      Unknown(item)->AddRef();
  }
  ~Enumerator() {
    for (Item& item : items_)
      Unknown(item)->Release();
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (iid == IID_IUnknown || iid == iid_) {
      *object = static_cast<Interface*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ::InterlockedIncrement(&references_); }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = ::InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return left;
  }

  STDMETHODIMP Next(ULONG count, Item* items, ULONG* fetched) override {
    if (items == nullptr || (count > 1 && fetched == nullptr)) return E_POINTER;
    ULONG n = 0;
    for (; n < count && position_ < items_.size(); ++n, ++position_) {
      items[n] = items_[position_];
      Unknown(items[n])->AddRef();
    }
    if (fetched != nullptr) *fetched = n;
    return n == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const size_t left = items_.size() - position_;
    position_ += count < left ? count : left;
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    position_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(Interface** clone) override {
    if (clone == nullptr) return E_POINTER;
    auto* copy = new (std::nothrow) Enumerator(iid_, items_);
    if (copy == nullptr) return E_OUTOFMEMORY;
    copy->position_ = position_;
    copy->AddRef();
    *clone = copy;
    return S_OK;
  }

 private:
  static IUnknown* Unknown(const CONNECTDATA& data) { return data.pUnk; }
  static IUnknown* Unknown(IUnknown* item) { return item; }

  LONG references_ = 1;
  const IID& iid_;
  std::vector<Item> items_;
  size_t position_ = 0;
};

}  // namespace

ConnectionPoint::~ConnectionPoint() {
  for (const Connection& connection : connections_)
    connection.sink->Release();
}

STDMETHODIMP ConnectionPoint::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (iid == IID_IUnknown || iid == IID_IConnectionPoint) {
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

STDMETHODIMP ConnectionPoint::GetConnectionInterface(IID* iid) {
  if (iid == nullptr) return E_POINTER;
  *iid = DIID__IFileEncoderEvents;
  return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (container == nullptr) return E_POINTER;
  *container = container_;
  container_->AddRef();
  return S_OK;
}

STDMETHODIMP ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
  if (sink == nullptr || cookie == nullptr) return E_POINTER;
  *cookie = 0;
  IDispatch* events = nullptr;
  if (FAILED(sink->QueryInterface(DIID__IFileEncoderEvents, reinterpret_cast<void**>(&events))) &&
      FAILED(sink->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&events)))) {
    return CONNECT_E_CANNOTCONNECT;
  }
  connections_.push_back({next_cookie_, events});
  *cookie = next_cookie_++;
  return S_OK;
}

STDMETHODIMP ConnectionPoint::Unadvise(DWORD cookie) {
  for (auto it = connections_.begin(); it != connections_.end(); ++it) {
    if (it->cookie == cookie) {
      IDispatch* sink = it->sink;
      connections_.erase(it);
      sink->Release();
      return S_OK;
    }
  }
  return CONNECT_E_NOCONNECTION;
}

STDMETHODIMP ConnectionPoint::EnumConnections(IEnumConnections** result) {
  if (result == nullptr) return E_POINTER;
  std::vector<CONNECTDATA> items;
  for (const Connection& connection : connections_)
    items.push_back({connection.sink, connection.cookie});
  *result =
      new (std::nothrow) Enumerator<IEnumConnections, CONNECTDATA>(IID_IEnumConnections, items);
  return *result == nullptr ? E_OUTOFMEMORY : S_OK;
}

std::vector<IDispatch*> ConnectionPoint::Snapshot() const {
  std::vector<IDispatch*> sinks;
  for (const Connection& connection : connections_) {
    connection.sink->AddRef();
    sinks.push_back(connection.sink);
  }
  return sinks;
}

HRESULT CreateConnectionPointEnumerator(IConnectionPoint* point, IEnumConnectionPoints** result) {
  if (result == nullptr) return E_POINTER;
  *result = new (std::nothrow)
      Enumerator<IEnumConnectionPoints, IConnectionPoint*>(IID_IEnumConnectionPoints, {point});
  return *result == nullptr ? E_OUTOFMEMORY : S_OK;
}

}  // namespace fe::ocx
