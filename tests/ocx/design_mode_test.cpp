#include <ocidl.h>

#include "client_sites.h"
#include "control_fixture.h"

namespace fe::test {
namespace {

constexpr HRESULT kDesignMode = static_cast<HRESULT>(0x800A018A);

class DesignMode : public ControlTest {
 protected:
  void Site(AmbientSite* site) {
    IOleObject* ole = nullptr;
    ASSERT_EQ(encoder_->QueryInterface(IID_IOleObject, reinterpret_cast<void**>(&ole)), S_OK);
    ASSERT_EQ(ole->SetClientSite(site), S_OK);
    ole->Release();
  }
};

const wchar_t* const kGuardedReads[] = {L"CodePage",    L"DecodedText",     L"DecryptedText",
                                        L"EncodedText", L"Encoding",        L"EncryptedText",
                                        L"LastError",   L"LastErrorString", L"Password",
                                        L"State",       L"ThrowError",      L"Version"};

TEST_F(DesignMode, EveryGuardedReadFails) {
  AmbientSite site(false, true);
  Site(&site);
  for (const wchar_t* name : kGuardedReads) {
    Variant value;
    EXPECT_EQ(control_->Get(name, value.get()), kDesignMode) << name;
  }
  Site(nullptr);
}

TEST_F(DesignMode, ReadsWorkInUserMode) {
  AmbientSite site(true, true);
  Site(&site);
  for (const wchar_t* name : kGuardedReads) {
    Variant value;
    EXPECT_EQ(control_->Get(name, value.get()), S_OK) << name;
  }
  EXPECT_GE(site.ambient_reads(), 12);
  Site(nullptr);
}

TEST_F(DesignMode, SiteWithoutAmbientPropertiesCountsAsDesignMode) {
  AmbientSite site(true, false);
  Site(&site);
  Variant value;
  EXPECT_EQ(control_->Get(L"Encoding", value.get()), kDesignMode);
  Site(nullptr);
}

TEST_F(DesignMode, WritesAreNotGuarded) {
  AmbientSite site(false, true);
  Site(&site);
  Variant nine(9);
  EXPECT_EQ(control_->Put(L"Encoding", nine.get()), S_OK);
  Variant enabled;
  EXPECT_EQ(control_->Get(L"Enabled", enabled.get()), S_OK);
  Site(nullptr);
  EXPECT_EQ(GetLong(L"Encoding"), 9);
}

TEST_F(DesignMode, InitializeGivesErrorFive) {
  AmbientSite site(false, true);
  Site(&site);
  Variant error(77);
  VARIANT missing;
  Variant::Missing(&missing);
  VARIANT errorRef = ByReference(error.get());
  EXPECT_EQ(control_->Method(L"Initialize", {&missing, &errorRef}), S_OK);
  EXPECT_EQ(error->lVal, 5);
  Variant on(1);
  ASSERT_EQ(control_->Put(L"ThrowError", on.get()), S_OK);
  EXPECT_EQ(control_->Method(L"Initialize", {&missing, &errorRef}),
            static_cast<HRESULT>(0x800A0005));
  Site(nullptr);
  // Not initialized: Reset still does nothing.
  Variant six(6);
  control_->Put(L"Encoding", six.get());
  control_->Method(L"Reset", {});
  EXPECT_EQ(GetLong(L"Encoding"), 6);
}

}  // namespace
}  // namespace fe::test
