/// Stands in for the home-automation host: an object with its members, in a library for the
/// program's own process or in a program of its own. It answers from a settings file and notes each
/// call, in order.

#include <array>
#include <atomic>
#include <cstdio>
#include <initguid.h>
#include <oaidl.h>
#include <oleauto.h>
#include <string>
#include <vector>
#include <windows.h>

#include "tests/platform/windows/automation_server/server_names.h"

namespace {

using quillon::test_server::ClassText;
using quillon::test_server::JournalVariable;

std::atomic<long> objectsAlive{0};

std::wstring JournalName() {
    std::array<wchar_t, 1024> name{};
    GetEnvironmentVariableW(JournalVariable, name.data(), static_cast<DWORD>(name.size()));
    return name.data();
}

std::wstring Setting(const wchar_t* section, const std::wstring& key,
                     const std::wstring& fallback) {
    std::array<wchar_t, 4096> value{};
    GetPrivateProfileStringW(section, key.c_str(), fallback.c_str(), value.data(),
                             static_cast<DWORD>(value.size()), (JournalName() + L".ini").c_str());
    return value.data();
}

void Note(const std::wstring& line) {
    FILE* const journal = _wfopen(JournalName().c_str(), L"ab");
    if (journal == nullptr) return;
    std::array<char, 8192> text{};
    WideCharToMultiByte(CP_UTF8, 0, line.c_str(), -1, text.data(), static_cast<int>(text.size()),
                        nullptr, nullptr);
    std::fprintf(journal, "%s\n", text.data());
    std::fclose(journal);
}

/// What every object here has in common.
template <typename Interface>
class Counted : public Interface {
  public:
    Counted() { ++objectsAlive; }
    virtual ~Counted() { --objectsAlive; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

  private:
    std::atomic<ULONG> references_{1};
};

class LateBound : public Counted<IDispatch> {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
        *object =
            IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_IDispatch) ? this : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID,
                                            DISPID* ids) override {
        for (std::size_t i = 0; i < members_.size(); ++i) {
            if (_wcsicmp(names[0], members_[i]) != 0) continue;
            ids[0] = static_cast<DISPID>(i + 1);
            return S_OK;
        }
        ids[0] = DISPID_UNKNOWN;
        return DISP_E_UNKNOWNNAME;
    }

  protected:
    explicit LateBound(std::vector<const wchar_t*> members) : members_(std::move(members)) {}
    const wchar_t* NameOf(DISPID id) const {
        return id > 0 && static_cast<std::size_t>(id) <= members_.size()
                   ? members_[static_cast<std::size_t>(id) - 1]
                   : L"";
    }

  private:
    std::vector<const wchar_t*> members_;
};

void Give(VARIANT* result, const std::wstring& text) {
    if (result == nullptr) return;
    result->vt = VT_BSTR;
    result->bstrVal = SysAllocString(text.c_str());
}

class Plugin : public LateBound {
  public:
    explicit Plugin(std::wstring name) : LateBound({L"Name"}), name_(std::move(name)) {}
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                     EXCEPINFO*, UINT*) override {
        if (id != 1) return DISP_E_MEMBERNOTFOUND;
        Note(L"Name");
        Give(result, name_);
        return S_OK;
    }

  private:
    std::wstring name_;
};

class PluginWalk : public Counted<IEnumVARIANT> {
  public:
    explicit PluginWalk(std::vector<std::wstring> names) : names_(std::move(names)) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
        *object = IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_IEnumVARIANT)
                      ? this
                      : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG wanted, VARIANT* entries, ULONG* count) override {
        ULONG given = 0;
        while (given < wanted && next_ < names_.size()) {
            entries[given].vt = VT_DISPATCH;
            entries[given].pdispVal = new Plugin(names_[next_]);
            ++next_;
            ++given;
        }
        if (count != nullptr) *count = given;
        return given == wanted ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override {
        next_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT**) override { return E_NOTIMPL; }

  private:
    std::vector<std::wstring> names_;
    std::size_t next_ = 0;
};

class Plugins : public LateBound {
  public:
    explicit Plugins(std::vector<std::wstring> names)
        : LateBound({L"Count"}), names_(std::move(names)) {}
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                     EXCEPINFO*, UINT*) override {
        if (id != DISPID_NEWENUM) return DISP_E_MEMBERNOTFOUND;
        Note(L"_NewEnum");
        result->vt = VT_UNKNOWN;
        result->punkVal = new PluginWalk(names_);
        return S_OK;
    }

  private:
    std::vector<std::wstring> names_;
};

std::vector<std::wstring> PluginNames() {
    std::vector<std::wstring> names;
    std::wstring text = Setting(L"Server", L"Plugins", L"Quillon") + L",";
    for (std::size_t comma = text.find(L','); comma != std::wstring::npos;
         comma = text.find(L',')) {
        if (comma > 0) names.push_back(text.substr(0, comma));
        text.erase(0, comma + 1);
    }
    return names;
}

class Application : public LateBound {
  public:
    Application() : LateBound({L"GetINISetting", L"WriteLog", L"GetPlugins", L"GetAppPath"}) {
        Note(L"(begun)");
    }
    ~Application() override { Note(L"(released)"); }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* given,
                                     VARIANT* result, EXCEPINFO* raised, UINT*) override {
        const std::wstring member = NameOf(id);
        std::vector<std::wstring> texts;
        for (UINT i = given->cArgs; i > 0; --i) {
            if (given->rgvarg[i - 1].vt != VT_BSTR) return DISP_E_TYPEMISMATCH;
            texts.emplace_back(given->rgvarg[i - 1].bstrVal);
        }
        std::wstring line = member;
        for (const std::wstring& text : texts)
            line += L"|" + text;
        Note(line);
        const std::wstring refusal = Setting(L"Refuse", member, L"-");
        if (refusal != L"-") return Refuse(raised, refusal);
        return Answer(member, texts, result);
    }

  private:
    static HRESULT Refuse(EXCEPINFO* raised, const std::wstring& why) {
        if (raised == nullptr) return E_FAIL;
        raised->scode = E_FAIL;
        if (!why.empty()) raised->bstrDescription = SysAllocString(why.c_str());
        return DISP_E_EXCEPTION;
    }

    static HRESULT Answer(const std::wstring& member, const std::vector<std::wstring>& texts,
                          VARIANT* result) {
        if (member == L"GetINISetting") {
            if (texts.size() != 4) return DISP_E_BADPARAMCOUNT;
            Give(result, Setting(texts[0].c_str(), texts[1], texts[2]));
        } else if (member == L"GetPlugins") {
            result->vt = VT_DISPATCH;
            result->pdispVal = new Plugins(PluginNames());
        } else if (member == L"GetAppPath") {
            Give(result, Setting(L"Server", L"AppPath", L"C:\\Host"));
        } else if (member == L"WriteLog") {
            if (texts.size() != 2) return DISP_E_BADPARAMCOUNT;
        } else {
            return DISP_E_MEMBERNOTFOUND;
        }
        return S_OK;
    }
};

class Factory : public Counted<IClassFactory> {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
        *object = IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_IClassFactory)
                      ? this
                      : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID wanted,
                                             void** object) override {
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        auto* const application = new Application;
        const HRESULT code = application->QueryInterface(wanted, object);
        application->Release();
        return code;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

CLSID ClassId() {
    CLSID id{};
    CLSIDFromString(ClassText, &id);
    return id;
}

}  // namespace

#ifdef QUILLON_SERVER_IS_LIBRARY

extern "C" __declspec(dllexport) HRESULT STDMETHODCALLTYPE DllGetClassObject(REFCLSID id,
                                                                             REFIID wanted,
                                                                             void** object) {
    if (!IsEqualCLSID(id, ClassId())) return CLASS_E_CLASSNOTAVAILABLE;
    auto* const factory = new Factory;
    const HRESULT code = factory->QueryInterface(wanted, object);
    factory->Release();
    return code;
}

extern "C" __declspec(dllexport) HRESULT STDMETHODCALLTYPE DllCanUnloadNow() {
    return objectsAlive == 0 ? S_OK : S_FALSE;
}

#else

int main() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    auto* const factory = new Factory;
    DWORD registered = 0;
    if (FAILED(CoRegisterClassObject(ClassId(), factory, CLSCTX_LOCAL_SERVER, REGCLS_SINGLEUSE,
                                     &registered)))
        return 1;
    // One object beside the factory, then none: that was the client, and it is done.
    const UINT_PTR timer = SetTimer(nullptr, 0, 50, nullptr);
    bool wasUsed = false;
    int ticks = 0;
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        DispatchMessageW(&message);
        if (message.message != WM_TIMER || message.hwnd != nullptr) continue;
        wasUsed = wasUsed || objectsAlive > 1;
        if ((wasUsed && objectsAlive <= 1) || ++ticks > 1200) break;
    }
    KillTimer(nullptr, timer);
    CoRevokeClassObject(registered);
    factory->Release();
    CoUninitialize();
    return 0;
}

#endif
