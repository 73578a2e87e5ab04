#include "platform/windows/automation.h"

#include <cstdio>
#include <oleauto.h>
#include <utility>

#include "platform/failure.h"
#include "platform/windows/wide_text.h"

namespace quillon {
namespace {

/// How often and how long a program is asked again that has no time just now.
constexpr int MostAttempts = 300;
constexpr DWORD Pause = 100;  // milliseconds

/// A text as such objects take it, freed with this one.
class ComText {
  public:
    explicit ComText(std::string_view text) {
        const std::wstring wide = WideText(text);
        text_ = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    }
    explicit ComText(BSTR taken) : text_(taken) {}
    ComText(const ComText&) = delete;
    ComText& operator=(const ComText&) = delete;
    ~ComText() { SysFreeString(text_); }
    BSTR Get() const { return text_; }
    std::string Narrow() const {
        return text_ == nullptr ? "" : NarrowText({text_, SysStringLen(text_)});
    }

  private:
    BSTR text_;
};

/// A value of whatever type, freed with this object.
class ComValue {
  public:
    ComValue() { VariantInit(&value); }
    ComValue(const ComValue&) = delete;
    ComValue& operator=(const ComValue&) = delete;
    ~ComValue() { VariantClear(&value); }

    /// The object in it, which is the caller's then; null for any other value.
    IDispatch* TakeObject() {
        if (value.vt != VT_DISPATCH) return nullptr;
        value.vt = VT_EMPTY;
        return value.pdispVal;
    }

    VARIANT value;
};

std::string CodeText(HRESULT code) {
    char text[32];
    std::snprintf(text, sizeof text, "error 0x%08lX", static_cast<unsigned long>(code));
    return text;
}

bool HasNoTime(HRESULT code) {
    return code == RPC_E_CALL_REJECTED || code == RPC_E_SERVERCALL_RETRYLATER;
}

/// Does something again while the other program has no time.
template <typename Call>
HRESULT Patiently(Call call) {
    HRESULT code = call();
    for (int attempt = 1; HasNoTime(code) && attempt < MostAttempts; ++attempt) {
        Sleep(Pause);
        code = call();
    }
    return code;
}

std::string OwnText(HRESULT code, const std::string& member) {
    switch (code) {
        case DISP_E_UNKNOWNNAME:
        case DISP_E_MEMBERNOTFOUND:
            return "The host's object has no member " + member;
        case DISP_E_BADPARAMCOUNT:
        case DISP_E_TYPEMISMATCH:
        case DISP_E_PARAMNOTOPTIONAL:
            return "The host's object takes other arguments for " + member;
        case RPC_E_DISCONNECTED:
        case RPC_E_SERVER_DIED:
        case RPC_E_SERVER_DIED_DNE:
        case CO_E_OBJNOTCONNECTED:
            return "The host has ended; " + member + " cannot be called any more";
        case RPC_E_CALL_REJECTED:
        case RPC_E_SERVERCALL_RETRYLATER:
            return "The host does not answer; " + member + " was asked for again and again";
        default:
            break;
    }
    if (HRESULT_FACILITY(code) == FACILITY_WIN32 && HRESULT_CODE(code) == RPC_S_SERVER_UNAVAILABLE)
        return "The host has ended; " + member + " cannot be called any more";
    return "The host's object failed in " + member + " (" + CodeText(code) + ')';
}

Failure ObjectFailure(const std::string& description) {
    return Failure::Described(FailureNumber::ObjectRequired, description);
}

/// What the object says of its failure, "" where it says nothing.
std::string TakeDescription(EXCEPINFO& raised) {
    if (raised.pfnDeferredFillIn != nullptr) raised.pfnDeferredFillIn(&raised);
    const ComText source(raised.bstrSource), help(raised.bstrHelpFile);
    return ComText(raised.bstrDescription).Narrow();
}

/// Puts all objects of a collection behind the list.
void AppendCollection(IDispatch& collection, std::vector<AutomationObject>& list) {
    ComValue result;
    DISPPARAMS nothing{};
    const HRESULT code = Patiently([&] {
        return collection.Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_SYSTEM_DEFAULT,
                                 DISPATCH_METHOD | DISPATCH_PROPERTYGET, &nothing, &result.value,
                                 nullptr, nullptr);
    });
    IEnumVARIANT* entries = nullptr;
    const bool isObject =
        SUCCEEDED(code) && (result.value.vt == VT_UNKNOWN || result.value.vt == VT_DISPATCH);
    if (!isObject || result.value.punkVal == nullptr ||
        FAILED(result.value.punkVal->QueryInterface(IID_IEnumVARIANT,
                                                    reinterpret_cast<void**>(&entries))))
        throw ObjectFailure("The host's list of plug-ins cannot be read (" + CodeText(code) + ')');
    while (true) {
        ComValue entry;
        ULONG count = 0;
        if (Patiently([&] { return entries->Next(1, &entry.value, &count); }) != S_OK || count == 0)
            break;
        if (IDispatch* const object = entry.TakeObject()) list.emplace_back(object);
    }
    entries->Release();
}

/// Puts all objects of an array behind the list.
void AppendArray(SAFEARRAY& array, std::vector<AutomationObject>& list) {
    LONG first = 0, last = -1;
    SafeArrayGetLBound(&array, 1, &first);
    SafeArrayGetUBound(&array, 1, &last);
    VARTYPE type = VT_EMPTY;
    SafeArrayGetVartype(&array, &type);
    for (LONG at = first; at <= last; ++at) {
        ComValue entry;
        const bool areValues = type == VT_VARIANT;
        if (!areValues) entry.value.vt = type;
        void* const target = areValues ? static_cast<void*>(&entry.value)
                                       : static_cast<void*>(&entry.value.pdispVal);
        if (FAILED(SafeArrayGetElement(&array, &at, target))) continue;
        if (IDispatch* const object = entry.TakeObject()) list.emplace_back(object);
    }
}

}  // namespace

ComApartment::ComApartment()
    : isOurs_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}

ComApartment::~ComApartment() {
    if (isOurs_) CoUninitialize();
}

AutomationObject& AutomationObject::operator=(AutomationObject&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
}

AutomationObject::~AutomationObject() {
    if (object_ != nullptr) object_->Release();
}

bool AutomationObject::IsRegistered(std::string_view programId) {
    CLSID id{};
    return SUCCEEDED(CLSIDFromProgID(WideText(programId).c_str(), &id));
}

AutomationObject AutomationObject::Create(std::string_view programId) {
    const std::string name(programId);
    CLSID id{};
    if (FAILED(CLSIDFromProgID(WideText(name).c_str(), &id)))
        throw ObjectFailure("The object " + name + " is not registered on this computer");
    IDispatch* object = nullptr;
    const HRESULT code = Patiently([&] {
        return CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                                IID_IDispatch, reinterpret_cast<void**>(&object));
    });
    if (SUCCEEDED(code) && object != nullptr) return AutomationObject(object);
    throw ObjectFailure("The object " + name + " is registered, but cannot be started (" +
                        CodeText(code) + ')');
}

void AutomationObject::Invoke(std::string_view member,
                              std::initializer_list<std::string_view> texts, VARIANT& result) {
    const std::string name(member);
    std::wstring wide = WideText(member);
    LPOLESTR wanted = wide.data();
    DISPID id = DISPID_UNKNOWN;
    HRESULT code = Patiently(
        [&] { return object_->GetIDsOfNames(IID_NULL, &wanted, 1, LOCALE_SYSTEM_DEFAULT, &id); });
    if (FAILED(code)) throw ObjectFailure(OwnText(code, name));
    std::vector<VARIANT> arguments(texts.size());
    // The last argument comes first.
    auto* argument = arguments.data() + arguments.size();
    for (const std::string_view text : texts) {
        --argument;
        argument->vt = VT_BSTR;
        const std::wstring one = WideText(text);
        argument->bstrVal = SysAllocStringLen(one.data(), static_cast<UINT>(one.size()));
    }
    DISPPARAMS given{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    EXCEPINFO raised{};
    code = Patiently([&] {
        return object_->Invoke(id, IID_NULL, LOCALE_SYSTEM_DEFAULT,
                               DISPATCH_METHOD | DISPATCH_PROPERTYGET, &given, &result, &raised,
                               nullptr);
    });
    for (VARIANT& value : arguments)
        VariantClear(&value);
    if (SUCCEEDED(code)) return;
    const std::string description = code == DISP_E_EXCEPTION ? TakeDescription(raised) : "";
    if (code == DISP_E_EXCEPTION && raised.scode != 0) code = raised.scode;
    throw ObjectFailure(description.empty() ? OwnText(code, name) : description);
}

std::string AutomationObject::Text(std::string_view member,
                                   std::initializer_list<std::string_view> texts) {
    ComValue result, text;
    Invoke(member, texts, result.value);
    if (result.value.vt == VT_EMPTY || result.value.vt == VT_NULL) return "";
    // As the classic runtime writes numbers, whatever the person's settings are.
    const HRESULT code =
        VariantChangeTypeEx(&text.value, &result.value, LOCALE_INVARIANT, 0, VT_BSTR);
    if (FAILED(code))
        throw ObjectFailure("The host's object gives no text for " + std::string(member));
    return NarrowText({text.value.bstrVal, SysStringLen(text.value.bstrVal)});
}

std::vector<AutomationObject> AutomationObject::List(std::string_view member) {
    ComValue result;
    Invoke(member, {}, result.value);
    std::vector<AutomationObject> list;
    if ((result.value.vt & VT_ARRAY) != 0) {
        SAFEARRAY* const array =
            (result.value.vt & VT_BYREF) != 0 ? *result.value.pparray : result.value.parray;
        if (array != nullptr) AppendArray(*array, list);
    } else if (result.value.vt == VT_DISPATCH && result.value.pdispVal != nullptr) {
        AppendCollection(*result.value.pdispVal, list);
    } else if (result.value.vt != VT_EMPTY && result.value.vt != VT_NULL) {
        throw ObjectFailure("The host's object gives no list for " + std::string(member));
    }
    return list;
}

}  // namespace quillon
