// The connection point of _IFileEncoderEvents and the enumerators that the
// connection-point interfaces hand out.
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <olectl.h>

#include <vector>

namespace fe::ocx {

class ConnectionPoint final : public IConnectionPoint {
 public:
  explicit ConnectionPoint(IConnectionPointContainer* container) : container_(container) {}
  ~ConnectionPoint();
  ConnectionPoint(const ConnectionPoint&) = delete;
  ConnectionPoint& operator=(const ConnectionPoint&) = delete;

  // The point lives inside the control and shares its lifetime.
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return container_->AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return container_->Release(); }

  STDMETHODIMP GetConnectionInterface(IID* iid) override;
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

  // The connected sinks in connection order, each with a reference the
  // caller releases: events go to this snapshot, so sinks may connect and
  // disconnect while one is raised.
  std::vector<IDispatch*> Snapshot() const;

 private:
  struct Connection {
    DWORD cookie;
    IDispatch* sink;
  };
  IConnectionPointContainer* container_;
  std::vector<Connection> connections_;
  DWORD next_cookie_ = 1;
};

// An enumerator of the single connection point.
HRESULT CreateConnectionPointEnumerator(IConnectionPoint* point, IEnumConnectionPoints** result);

}  // namespace fe::ocx
