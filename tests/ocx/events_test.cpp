#include <ocidl.h>
#include <olectl.h>

#include "control_fixture.h"
#include "event_sink.h"

namespace fe::test {
namespace {

// An event sink that counts what it receives.
class CountingSink final : public EventSink {
 public:
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    (id == 1 ? errors : progress)++;
    return S_OK;
  }
  int errors = 0;
  int progress = 0;
};

// A sink that offers no dispatch interface.
class MuteSink final : public IUnknown {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown ? this : nullptr;
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
};

class Events : public ControlTest {
 protected:
  IConnectionPoint* Point() {
    IConnectionPointContainer* container = nullptr;
    EXPECT_EQ(encoder_->QueryInterface(IID_IConnectionPointContainer,
                                       reinterpret_cast<void**>(&container)),
              S_OK);
    IConnectionPoint* point = nullptr;
    EXPECT_EQ(container->FindConnectionPoint(DIID__IFileEncoderEvents, &point), S_OK);
    IConnectionPoint* other = nullptr;
    EXPECT_EQ(container->FindConnectionPoint(IID_IDispatch, &other), CONNECT_E_NOCONNECTION);
    container->Release();
    return point;
  }

  int Connections(IConnectionPoint* point) {
    IEnumConnections* connections = nullptr;
    EXPECT_EQ(point->EnumConnections(&connections), S_OK);
    int n = 0;
    CONNECTDATA data;
    while (connections->Next(1, &data, nullptr) == S_OK) {
      data.pUnk->Release();
      ++n;
    }
    connections->Release();
    return n;
  }
};

TEST_F(Events, AdviseAndUnadvise) {
  IConnectionPoint* point = Point();
  IID iid;
  ASSERT_EQ(point->GetConnectionInterface(&iid), S_OK);
  EXPECT_TRUE(IsEqualGUID(iid, DIID__IFileEncoderEvents));
  CountingSink first, second;
  DWORD a = 0, b = 0;
  ASSERT_EQ(point->Advise(&first, &a), S_OK);
  ASSERT_EQ(point->Advise(&second, &b), S_OK);
  EXPECT_NE(a, b);
  EXPECT_EQ(Connections(point), 2);
  EXPECT_EQ(point->Unadvise(a), S_OK);
  EXPECT_EQ(point->Unadvise(a), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(Connections(point), 1);
  EXPECT_EQ(point->Unadvise(b), S_OK);
  EXPECT_EQ(first.references, 1u);
  EXPECT_EQ(second.references, 1u);
  point->Release();
}

TEST_F(Events, SinkWithoutDispatchCannotConnect) {
  IConnectionPoint* point = Point();
  MuteSink sink;
  DWORD cookie = 99;
  EXPECT_EQ(point->Advise(&sink, &cookie), CONNECT_E_CANNOTCONNECT);
  EXPECT_EQ(cookie, 0u);
  point->Release();
}

TEST_F(Events, OneConnectionPointIsEnumerated) {
  IConnectionPointContainer* container = nullptr;
  ASSERT_EQ(
      encoder_->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container)),
      S_OK);
  IEnumConnectionPoints* points = nullptr;
  ASSERT_EQ(container->EnumConnectionPoints(&points), S_OK);
  IConnectionPoint* found[2] = {};
  ULONG fetched = 0;
  EXPECT_EQ(points->Next(2, found, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 1u);
  found[0]->Release();
  points->Release();
  container->Release();
}

TEST_F(Events, OnErrorIsNeverRaised) {
  IConnectionPoint* point = Point();
  CountingSink sink;
  DWORD cookie = 0;
  ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
  // Failing calls of every kind.
  Variant bad(42), output, result;
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  control_->Method(L"CompressData", {bad.get(), &outputRef, &resultRef});
  Variant one(L"a");
  control_->Method(L"CompressData", {one.get(), &outputRef, &resultRef});
  Variant twelve(12);
  control_->Put(L"Encoding", twelve.get());
  EXPECT_EQ(sink.errors, 0);
  EXPECT_EQ(sink.progress, 0);
  point->Unadvise(cookie);
  point->Release();
}

TEST_F(Events, ClassInfoNamesTheEventInterface) {
  IProvideClassInfo2* provider = nullptr;
  ASSERT_EQ(encoder_->QueryInterface(IID_IProvideClassInfo2, reinterpret_cast<void**>(&provider)),
            S_OK);
  GUID guid;
  ASSERT_EQ(provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &guid), S_OK);
  EXPECT_TRUE(IsEqualGUID(guid, DIID__IFileEncoderEvents));
  ITypeInfo* info = nullptr;
  ASSERT_EQ(provider->GetClassInfo(&info), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
  EXPECT_TRUE(IsEqualGUID(attributes->guid, CLSID_FileEncoder));
  info->ReleaseTypeAttr(attributes);
  info->Release();
  provider->Release();
}

}  // namespace
}  // namespace fe::test
