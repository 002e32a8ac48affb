// OnProgress from the file methods, received through a connection point as
// scripts cannot here (Wine's script hosts do not connect event sinks).
#include <ocidl.h>
#include <olectl.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "control_fixture.h"
#include "event_sink.h"

namespace fe::test {
namespace {

struct ProgressCall {
  std::wstring fileName;
  LONG size;
  LONG processed;
  SHORT percent;
  LONG stateDuringCall;
};

// Records every OnProgress with its arguments and the State it reads.
class ProgressSink final : public EventSink {
 public:
  explicit ProgressSink(IFileEncoder* control) : control_(control) {}
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    if (id != 2 || flags != DISPATCH_METHOD || params->cArgs != 4) return DISP_E_MEMBERNOTFOUND;
    // Last argument first.
    ProgressCall call{params->rgvarg[3].bstrVal, params->rgvarg[2].lVal, params->rgvarg[1].lVal,
                      params->rgvarg[0].iVal, -1};
    EXPECT_EQ(params->rgvarg[3].vt, VT_BSTR);
    EXPECT_EQ(params->rgvarg[0].vt, VT_I2);
    control_->get_State(&call.stateDuringCall);
    calls.push_back(call);
    // A sink may leave any last error behind; the method must not care.
    ::SetLastError(12345);
    return E_FAIL;
  }
  std::vector<ProgressCall> calls;

 private:
  IFileEncoder* control_;
};

class Progress : public ControlTest {
 protected:
  void SetUp() override {
    ControlTest::SetUp();
    IConnectionPointContainer* container = nullptr;
    ASSERT_EQ(encoder_->QueryInterface(IID_IConnectionPointContainer,
                                       reinterpret_cast<void**>(&container)),
              S_OK);
    ASSERT_EQ(container->FindConnectionPoint(DIID__IFileEncoderEvents, &point_), S_OK);
    container->Release();
    sink_ = std::make_unique<ProgressSink>(encoder_);
    ASSERT_EQ(point_->Advise(sink_.get(), &cookie_), S_OK);
    wchar_t folder[MAX_PATH];
    ::GetTempPathW(MAX_PATH, folder);
    source_ = std::wstring(folder) + L"fe_progress_source.txt";
    std::ofstream(std::string(source_.begin(), source_.end()), std::ios::binary)
        << std::string(1000, 'p');
    output_ = std::wstring(folder) + L"fe_progress_output.z";
  }
  void TearDown() override {
    point_->Unadvise(cookie_);
    point_->Release();
    ::DeleteFileW(source_.c_str());
    ::DeleteFileW(output_.c_str());
    ControlTest::TearDown();
  }

  IConnectionPoint* point_ = nullptr;
  DWORD cookie_ = 0;
  std::unique_ptr<ProgressSink> sink_;
  std::wstring source_, output_;
};

TEST_F(Progress, CompressFileRaisesItTwiceWithStateActive) {
  Variant input(source_.c_str()), output(output_.c_str()), error(77);
  VARIANT missing;
  Variant::Missing(&missing);
  VARIANT errorRef = ByReference(error.get());
  ASSERT_EQ(
      control_->Method(L"CompressFile", {input.get(), output.get(), &missing, &missing, &errorRef}),
      S_OK);
  EXPECT_EQ(error->lVal, 0);
  ASSERT_EQ(sink_->calls.size(), 2u);
  EXPECT_EQ(sink_->calls[0].fileName, source_);
  EXPECT_EQ(sink_->calls[0].size, 1000);
  EXPECT_EQ(sink_->calls[0].processed, 0);
  EXPECT_EQ(sink_->calls[0].percent, 0);
  EXPECT_EQ(sink_->calls[1].processed, 1000);
  EXPECT_EQ(sink_->calls[1].percent, 100);
  for (const ProgressCall& call : sink_->calls)
    EXPECT_EQ(call.stateDuringCall, 1);
  EXPECT_EQ(GetLong(L"State"), 0);
}

TEST_F(Progress, FailedOperationStillRaisesBothEvents) {
  // Type 0 cannot compress: the work fails after the first event.
  Variant input(source_.c_str()), output(output_.c_str()), type(LONG{0}), error;
  VARIANT missing;
  Variant::Missing(&missing);
  VARIANT errorRef = ByReference(error.get());
  ASSERT_EQ(control_->Method(L"CompressFile",
                             {input.get(), output.get(), type.get(), &missing, &errorRef}),
            S_OK);
  EXPECT_EQ(error->lVal, 10014);
  EXPECT_EQ(sink_->calls.size(), 2u);
  EXPECT_EQ(GetLong(L"LastError"), 10014);
}

TEST_F(Progress, MissingInputRaisesNoEventAndLeavesErrorTwo) {
  const std::wstring missingFile = source_ + L".missing";
  Variant input(missingFile.c_str()), output(output_.c_str()), error;
  VARIANT missing;
  Variant::Missing(&missing);
  VARIANT errorRef = ByReference(error.get());
  ASSERT_EQ(
      control_->Method(L"CompressFile", {input.get(), output.get(), &missing, &missing, &errorRef}),
      S_OK);
  EXPECT_EQ(error->lVal, 2);
  EXPECT_TRUE(sink_->calls.empty());
  EXPECT_EQ(GetLong(L"LastError"), 2);
}

TEST_F(Progress, EveryFileMethodReportsItsWork) {
  Variant input(source_.c_str()), output(output_.c_str()), error;
  VARIANT missing;
  Variant::Missing(&missing);
  VARIANT errorRef = ByReference(error.get());
  Variant yenc(4);
  ASSERT_EQ(control_->Method(L"EncodeFile", {input.get(), output.get(), yenc.get(), &errorRef}),
            S_OK);
  ASSERT_EQ(error->lVal, 0);
  const std::wstring back = source_ + L".back";
  Variant encoded(output_.c_str()), decoded(back.c_str());
  ASSERT_EQ(control_->Method(L"DecodeFile", {encoded.get(), decoded.get(), yenc.get(), &errorRef}),
            S_OK);
  ASSERT_EQ(error->lVal, 0);
  ::DeleteFileW(back.c_str());
  EXPECT_EQ(sink_->calls.size(), 4u);
}

TEST_F(Progress, EncryptFileSetsStateButRaisesNoEvent) {
  // Large enough that the call lasts while another thread watches State.
  std::ofstream(std::string(source_.begin(), source_.end()), std::ios::binary)
      << std::string(32 << 20, 'e');
  std::atomic<bool> done{false};
  std::atomic<LONG> seen{0};
  HRESULT result = E_FAIL;
  LONG error = -1;
  std::thread call([&] {
    Variant input(source_.c_str()), output(output_.c_str()), password(L"pw"), errorValue;
    VARIANT errorRef = ByReference(errorValue.get());
    result = encoder_->EncryptFile(*input.get(), *output.get(), *password.get(), &errorRef);
    error = errorValue->lVal;
    done = true;
  });
  while (!done) {
    LONG state = 0;
    encoder_->get_State(&state);
    if (state == 1) seen = 1;
  }
  call.join();
  EXPECT_EQ(result, S_OK);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(seen.load(), 1);
  EXPECT_TRUE(sink_->calls.empty());
  EXPECT_EQ(GetLong(L"State"), 0);
  // Decryption alike, back into the source.
  Variant input(output_.c_str()), output(source_.c_str()), password(L"pw"), errorValue;
  VARIANT errorRef = ByReference(errorValue.get());
  ASSERT_EQ(
      control_->Method(L"DecryptFile", {input.get(), output.get(), password.get(), &errorRef}),
      S_OK);
  EXPECT_EQ(errorValue->lVal, 0);
  EXPECT_TRUE(sink_->calls.empty());
  std::ifstream back(std::string(source_.begin(), source_.end()), std::ios::binary | std::ios::ate);
  EXPECT_EQ(static_cast<long long>(back.tellg()), 32ll << 20);
}

}  // namespace
}  // namespace fe::test
