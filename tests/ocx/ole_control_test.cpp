// The OLE control interfaces a host uses to insert the invisible control.
#include <ocidl.h>
#include <olectl.h>

#include "control_fixture.h"

namespace fe::test {
namespace {

class OleControl : public ControlTest {
 protected:
  template <typename T>
  T* As(REFIID iid) {
    T* object = nullptr;
    EXPECT_EQ(encoder_->QueryInterface(iid, reinterpret_cast<void**>(&object)), S_OK);
    return object;
  }
};

TEST_F(OleControl, MiscStatusMarksAnInvisibleInsideOutControl) {
  IOleObject* ole = As<IOleObject>(IID_IOleObject);
  DWORD status = 0;
  ASSERT_EQ(ole->GetMiscStatus(DVASPECT_CONTENT, &status), S_OK);
  EXPECT_EQ(status, 132497u);
  CLSID clsid;
  ASSERT_EQ(ole->GetUserClassID(&clsid), S_OK);
  EXPECT_TRUE(IsEqualGUID(clsid, CLSID_FileEncoder));
  ole->Release();
}

TEST_F(OleControl, ExtentIsKeptAndPersisted) {
  IOleObject* ole = As<IOleObject>(IID_IOleObject);
  SIZEL size = {1234, 567};
  ASSERT_EQ(ole->SetExtent(DVASPECT_CONTENT, &size), S_OK);
  ole->Release();
  IViewObject2* view = As<IViewObject2>(IID_IViewObject2);
  SIZEL read = {};
  ASSERT_EQ(view->GetExtent(DVASPECT_CONTENT, -1, nullptr, &read), S_OK);
  EXPECT_EQ(read.cx, 1234);
  EXPECT_EQ(read.cy, 567);
  view->Release();

  ASSERT_EQ(encoder_->put_Enabled(VARIANT_FALSE), S_OK);
  IPersistStreamInit* persist = As<IPersistStreamInit>(IID_IPersistStreamInit);
  EXPECT_EQ(persist->IsDirty(), S_OK);
  IStream* stream = nullptr;
  ASSERT_EQ(::CreateStreamOnHGlobal(nullptr, TRUE, &stream), S_OK);
  ASSERT_EQ(persist->Save(stream, TRUE), S_OK);
  EXPECT_EQ(persist->IsDirty(), S_FALSE);
  persist->Release();

  // A second control loads what the first saved.
  IDispatch* other = nullptr;
  ASSERT_EQ(Dispatch::Create(L"Orvane.FileEncoder", &other), S_OK);
  IPersistStreamInit* load = nullptr;
  ASSERT_EQ(other->QueryInterface(IID_IPersistStreamInit, reinterpret_cast<void**>(&load)), S_OK);
  LARGE_INTEGER start = {};
  stream->Seek(start, STREAM_SEEK_SET, nullptr);
  ASSERT_EQ(load->Load(stream), S_OK);
  IOleObject* otherOle = nullptr;
  other->QueryInterface(IID_IOleObject, reinterpret_cast<void**>(&otherOle));
  SIZEL loaded = {};
  otherOle->GetExtent(DVASPECT_CONTENT, &loaded);
  EXPECT_EQ(loaded.cx, 1234);
  IFileEncoder* encoder = nullptr;
  other->QueryInterface(IID_IFileEncoder, reinterpret_cast<void**>(&encoder));
  VARIANT_BOOL enabled = VARIANT_TRUE;
  encoder->get_Enabled(&enabled);
  EXPECT_EQ(enabled, VARIANT_FALSE);
  encoder->Release();
  otherOle->Release();
  load->Release();
  other->Release();
  stream->Release();
}

TEST_F(OleControl, WindowlessWithoutAcceleratorsOrSafetyClaims) {
  IOleInPlaceObject* inPlace = As<IOleInPlaceObject>(IID_IOleInPlaceObject);
  HWND window = reinterpret_cast<HWND>(1);
  EXPECT_EQ(inPlace->GetWindow(&window), E_FAIL);
  EXPECT_EQ(window, nullptr);
  inPlace->Release();
  IOleControl* control = As<IOleControl>(IID_IOleControl);
  CONTROLINFO info = {};
  ASSERT_EQ(control->GetControlInfo(&info), S_OK);
  EXPECT_EQ(info.cAccel, 0);
  control->Release();
  // It reads and writes files its caller names: it does not claim to be safe
  // for scripting or initialization.
  IUnknown* safety = nullptr;
  const IID objectSafety = {
      0xCB5BDC81, 0x93C1, 0x11CF, {0x8F, 0x20, 0x00, 0x80, 0x5F, 0x2C, 0xD0, 0x64}};
  EXPECT_EQ(encoder_->QueryInterface(objectSafety, reinterpret_cast<void**>(&safety)),
            E_NOINTERFACE);
  ISupportErrorInfo* support = As<ISupportErrorInfo>(IID_ISupportErrorInfo);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IFileEncoder), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
  support->Release();
}

}  // namespace
}  // namespace fe::test
