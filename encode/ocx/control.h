// CFileEncoder: the one object callers create. It implements the dual
// interface IFileEncoder (dispatch through the type library), the events'
// connection point, error information, and the OLE control interfaces that
// hosts need to insert an invisible control.
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <olectl.h>

#include <functional>
#include <string>

#include "connection_point.h"
#include "file_encoder_h.h"
#include "scratch_heap.h"

namespace fe::ocx {

// The method after Utf8ToStr in the function table, which the type library
// does not list: it is reachable only through the vtable.
struct IFileEncoderConversion : public IFileEncoder {
  virtual HRESULT STDMETHODCALLTYPE ConvertFile(VARIANT InputFile, VARIANT SourceCodePage,
                                                VARIANT OutputFile, VARIANT DestinationCodePage,
                                                VARIANT Options, VARIANT* Error) = 0;
};

class CFileEncoder final : public IFileEncoderConversion,
                           public IConnectionPointContainer,
                           public IProvideClassInfo2,
                           public ISupportErrorInfo,
                           public IOleObject,
                           public IOleControl,
                           public IOleInPlaceObject,
                           public IViewObject2,
                           public IPersistStreamInit,
                           public IPersistPropertyBag {
 public:
  CFileEncoder();
  ~CFileEncoder();
  CFileEncoder(const CFileEncoder&) = delete;
  CFileEncoder& operator=(const CFileEncoder&) = delete;

  // IUnknown
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  // IDispatch
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* params,
                      VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

  // IFileEncoder: properties
  STDMETHODIMP put_Enabled(VARIANT_BOOL value) override;
  STDMETHODIMP get_Enabled(VARIANT_BOOL* value) override;
  STDMETHODIMP About() override;
  STDMETHODIMP get_DecodedText(BSTR* value) override;
  STDMETHODIMP put_DecodedText(BSTR value) override;
  STDMETHODIMP get_DecryptedText(BSTR* value) override;
  STDMETHODIMP put_DecryptedText(BSTR value) override;
  STDMETHODIMP get_EncodedText(BSTR* value) override;
  STDMETHODIMP put_EncodedText(BSTR value) override;
  STDMETHODIMP get_Encoding(LONG* value) override;
  STDMETHODIMP put_Encoding(LONG value) override;
  STDMETHODIMP get_EncryptedText(BSTR* value) override;
  STDMETHODIMP put_EncryptedText(BSTR value) override;
  STDMETHODIMP get_LastError(LONG* value) override;
  STDMETHODIMP put_LastError(LONG value) override;
  STDMETHODIMP get_LastErrorString(BSTR* value) override;
  STDMETHODIMP get_Password(BSTR* value) override;
  STDMETHODIMP put_Password(BSTR value) override;
  STDMETHODIMP get_State(LONG* value) override;
  STDMETHODIMP get_ThrowError(VARIANT_BOOL* value) override;
  STDMETHODIMP put_ThrowError(VARIANT_BOOL value) override;
  STDMETHODIMP get_Version(BSTR* value) override;
  STDMETHODIMP get_CodePage(LONG* value) override;
  STDMETHODIMP put_CodePage(LONG value) override;

  // IFileEncoder: methods
  STDMETHODIMP CompressBuffer(VARIANT InputData, VARIANT* OutputData, VARIANT* Result) override;
  STDMETHODIMP CompressData(VARIANT InputData, VARIANT* OutputData, VARIANT* Result) override;
  STDMETHODIMP CompressFile(VARIANT InputFile, VARIANT OutputFile, VARIANT CompressionType,
                            VARIANT CompressionLevel, VARIANT* Error) override;
  STDMETHODIMP DecodeFile(VARIANT InputFile, VARIANT OutputFile, VARIANT Encoding,
                          VARIANT* Error) override;
  STDMETHODIMP DecryptData(VARIANT InputData, VARIANT* OutputData, VARIANT Password,
                           VARIANT* Result) override;
  STDMETHODIMP DecryptFile(VARIANT InputFile, VARIANT OutputFile, VARIANT Password,
                           VARIANT* Error) override;
  STDMETHODIMP EncodeFile(VARIANT InputFile, VARIANT OutputFile, VARIANT Encoding,
                          VARIANT* Error) override;
  STDMETHODIMP EncryptData(VARIANT InputData, VARIANT* OutputData, VARIANT Password,
                           VARIANT* Result) override;
  STDMETHODIMP EncryptFile(VARIANT InputFile, VARIANT OutputFile, VARIANT Password,
                           VARIANT* Error) override;
  STDMETHODIMP ExpandBuffer(VARIANT InputData, VARIANT* OutputData, VARIANT* Result) override;
  STDMETHODIMP ExpandData(VARIANT InputData, VARIANT* OutputData, VARIANT* Result) override;
  STDMETHODIMP ExpandFile(VARIANT InputFile, VARIANT OutputFile, VARIANT CompressionType,
                          VARIANT* Error) override;
  STDMETHODIMP Initialize(VARIANT Parameter, VARIANT* Error) override;
  STDMETHODIMP Reset() override;
  STDMETHODIMP Uninitialize() override;
  STDMETHODIMP CompareFile(VARIANT File1, VARIANT File2, VARIANT Options, VARIANT Digest,
                           VARIANT* Error) override;
  STDMETHODIMP CreateToken(VARIANT BitLength, VARIANT EncodingType, VARIANT* Result) override;
  STDMETHODIMP CreateUuid7(VARIANT* Result) override;
  STDMETHODIMP CreateUuid8(VARIANT CustomValue, VARIANT* Result) override;
  STDMETHODIMP FilterHtml(VARIANT InputText, VARIANT* Result) override;
  STDMETHODIMP FilterMarkdown(VARIANT InputText, VARIANT* Result) override;
  STDMETHODIMP FilterUnicode(VARIANT InputText, VARIANT* Result) override;
  STDMETHODIMP IsConfusable(VARIANT InputText, VARIANT* Result) override;
  STDMETHODIMP IsValidUtf8(VARIANT InputBytes, VARIANT* Result) override;
  STDMETHODIMP StrToUtf8(VARIANT InputText, VARIANT* Result) override;
  STDMETHODIMP Utf8ToStr(VARIANT InputBytes, VARIANT* Result) override;
  STDMETHODIMP ConvertFile(VARIANT InputFile, VARIANT SourceCodePage, VARIANT OutputFile,
                           VARIANT DestinationCodePage, VARIANT Options, VARIANT* Error) override;

  // IConnectionPointContainer
  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
  STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

  // IProvideClassInfo2
  STDMETHODIMP GetClassInfo(ITypeInfo** info) override;
  STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override;

  // ISupportErrorInfo
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override;

  // IOleObject
  STDMETHODIMP SetClientSite(IOleClientSite* site) override;
  STDMETHODIMP GetClientSite(IOleClientSite** site) override;
  STDMETHODIMP SetHostNames(LPCOLESTR application, LPCOLESTR document) override;
  STDMETHODIMP Close(DWORD saveOption) override;
  STDMETHODIMP SetMoniker(DWORD which, IMoniker* moniker) override;
  STDMETHODIMP GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
  STDMETHODIMP InitFromData(IDataObject* data, BOOL creation, DWORD reserved) override;
  STDMETHODIMP GetClipboardData(DWORD reserved, IDataObject** data) override;
  STDMETHODIMP DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index, HWND parent,
                      LPCRECT position) override;
  STDMETHODIMP EnumVerbs(IEnumOLEVERB** verbs) override;
  STDMETHODIMP Update() override;
  STDMETHODIMP IsUpToDate() override;
  STDMETHODIMP GetUserClassID(CLSID* clsid) override;
  STDMETHODIMP GetUserType(DWORD form, LPOLESTR* type) override;
  STDMETHODIMP SetExtent(DWORD aspect, SIZEL* size) override;
  STDMETHODIMP GetExtent(DWORD aspect, SIZEL* size) override;
  STDMETHODIMP Advise(IAdviseSink* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  STDMETHODIMP EnumAdvise(IEnumSTATDATA** advises) override;
  STDMETHODIMP GetMiscStatus(DWORD aspect, DWORD* status) override;
  STDMETHODIMP SetColorScheme(LOGPALETTE* palette) override;

  // IOleControl
  STDMETHODIMP GetControlInfo(CONTROLINFO* info) override;
  STDMETHODIMP OnMnemonic(MSG* message) override;
  STDMETHODIMP OnAmbientPropertyChange(DISPID id) override;
  STDMETHODIMP FreezeEvents(BOOL freeze) override;

  // IOleWindow, IOleInPlaceObject
  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL enter) override;
  STDMETHODIMP InPlaceDeactivate() override;
  STDMETHODIMP UIDeactivate() override;
  STDMETHODIMP SetObjectRects(LPCRECT position, LPCRECT clip) override;
  STDMETHODIMP ReactivateAndUndo() override;

  // IViewObject, IViewObject2
  STDMETHODIMP Draw(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* device,
                    HDC targetDevice, HDC draw, LPCRECTL bounds, LPCRECTL window,
                    BOOL(STDMETHODCALLTYPE* keepGoing)(ULONG_PTR), ULONG_PTR argument) override;
  STDMETHODIMP GetColorSet(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* device,
                           HDC targetDevice, LOGPALETTE** colors) override;
  STDMETHODIMP Freeze(DWORD aspect, LONG index, void* aspectInfo, DWORD* freeze) override;
  STDMETHODIMP Unfreeze(DWORD freeze) override;
  STDMETHODIMP SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
  STDMETHODIMP GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
  STDMETHODIMP GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device, LPSIZEL size) override;

  // IPersist, IPersistStreamInit, IPersistPropertyBag
  STDMETHODIMP GetClassID(CLSID* clsid) override;
  STDMETHODIMP IsDirty() override;
  STDMETHODIMP Load(LPSTREAM stream) override;
  STDMETHODIMP Save(LPSTREAM stream, BOOL clearDirty) override;
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER* size) override;
  STDMETHODIMP InitNew() override;
  STDMETHODIMP Load(IPropertyBag* bag, IErrorLog* log) override;
  STDMETHODIMP Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAll) override;

 private:
  // Whether the host runs in user mode (ambient UserMode); true without a
  // client site. Every guarded property read asks this first.
  bool InUserMode() const;
  HRESULT ReportError(DWORD code);
  void ResetState();
  HRESULT ConvertTextSlot(bool encode, BSTR* value);
  HRESULT CipherTextSlot(bool encrypt, BSTR* value);
  // Runs a file operation: names by rule S, State 1 around the engine call,
  // and with `progress` the size probe and OnProgress at 0 and 100 percent.
  HRESULT RunFileOperation(const VARIANT& InputFile, const VARIANT& OutputFile, VARIANT* Error,
                           bool progress, const std::function<int(const char*, const char*)>& run);
  void RaiseProgress(const std::string& fileName, DWORD size, DWORD processed, SHORT percent);
  HRESULT CodeFile(bool encode, const VARIANT& InputFile, const VARIANT& OutputFile,
                   const VARIANT& Encoding, VARIANT* Error);
  HRESULT CipherFile(bool encrypt, const VARIANT& InputFile, const VARIANT& OutputFile,
                     const VARIANT& Password, VARIANT* Error);
  // Sets Result to the text of a token or UUID, or reports the failure.
  HRESULT StoreIdentifier(VARIANT* Result, bool made, const char* text);
  HRESULT CipherData(bool encrypt, const VARIANT& InputData, VARIANT* OutputData,
                     const VARIANT& Password, VARIANT* Result);

  LONG references_ = 0;
  ScratchHeap heap_;
  std::wstring error_source_;
  UINT code_page_ = CP_UTF8;
  DWORD last_error_ = 0;
  std::wstring decoded_text_;
  std::wstring decrypted_text_;
  std::wstring encoded_text_;
  std::wstring encrypted_text_;
  USHORT encoding_ = 1;
  bool initialized_ = false;
  std::wstring password_;
  LONG state_ = 0;
  bool throw_error_ = false;
  std::wstring version_text_;

  // Control framework state.
  bool enabled_ = true;
  bool dirty_ = false;
  SIZEL extent_ = {847, 847};  // 32 x 32 pixels at 96 dpi, in HIMETRIC
  IOleClientSite* client_site_ = nullptr;
  IAdviseSink* view_sink_ = nullptr;
  ConnectionPoint events_;
};

}  // namespace fe::ocx
