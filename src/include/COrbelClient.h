#pragma once

#include <cstddef>
#include <string>

#include "GUID.h"
#include "Orbel.h"
#include "OrbelDebug2.h"
#include "OrbelIDE3.h"
#include "OrbelProfiler2.h"
#include "OrbelProject.h"
#include "SAttachInfo.h"
#include "SOrbelInfo.h"

namespace kestrix {

/// The automation client: finds the automation library, loads it, creates its object, fetches
/// its interfaces, attaches to a Quillon instance or launches one, and releases all again.
/// It does not throw: operations report through their result and the stored error code and text.
class COrbelClient {
public:
    /// Room of the library path, terminator included.
    static constexpr size_t DLL_PATH_SIZE = 260;
    /// Room of the error text, terminator included.
    static constexpr size_t ERROR_TEXT_SIZE = 1000;

    enum EState { stateNothingLoaded = 0, stateInProcess = 1, stateLoaded = 2 };

    COrbelClient();
    virtual ~COrbelClient();

    COrbelClient(const COrbelClient&) = delete;
    COrbelClient& operator=(const COrbelClient&) = delete;

    /// Path of the automation library, from ORBEL_PATH or the version log; null with the error set.
    const char* findOrbelDll();
    /// Loads the library at `path` (null: the system's search path); 1 on success, else 0.
    int load(const char* path);
    /// Detaches and releases the interfaces and the library.
    void unload();
    bool attachTcp(const char* address, WORD port);
    bool attachSharedMemory(DWORD pid);
    /// Finds and loads the library, launches or finds Quillon with `workspace`, and attaches.
    int launch(const char* workspace);
    /// The text of the last failure ("E:<code> <message>\n"), its code through `code`.
    const char* getLastError(int* code) const;

    virtual void queryInterfaces(Orbel* object);
    virtual void releaseInterfaces();

    /// Forgets the last failure.
    void clearError();
    /// Ends the session if one is attached: `Detach(flags)`, and the attached flag cleared.
    void detach(DWORD flags);
    /// Ends an in-process client: releases its interfaces and returns to the state without library.
    void releaseInProcess();

    int getState() const { return m_state; }
    bool isAttached() const { return m_isAttached; }
    HRESULT getAttachResult() const { return m_attachResult; }
    const SAttachInfo& getAttachInfo() const { return m_attachInfo; }
    const char* getDllPath() const { return m_dllPath; }
    bool isInfoValid() const { return m_infoValid; }
    const SOrbelInfo& getInfo() const { return m_info; }

    Orbel* getOrbel() const { return m_orbel; }
    OrbelIDE* getIDE() const { return m_ide; }
    OrbelDebug* getDebug() const { return m_debug; }
    OrbelProfiler2* getProfiler() const { return m_profiler; }
    OrbelProject* getProject() const { return m_project; }
    OrbelDebug2* getDebug2() const { return m_debug2; }
    OrbelIDE2* getIDE2() const { return m_ide2; }
    OrbelIDE3* getIDE3() const { return m_ide3; }

protected:
    /// Stores a failure: code and the printf-formatted message.
    void setError(int code, const char* format, ...) __attribute__((format(printf, 3, 4)));
    /// What every destructor of the tree does first, so that the virtual release of the most
    /// derived class still runs: unload a loaded library, or end an in-process client.
    void shutdown();

    /// `QueryInterface` of `iid` into `target`; null if the object lacks it.
    template <class I>
    static void query(Orbel* object, const GUID& iid, I*& target)
    {
        void* pointer = nullptr;
        if (object->QueryInterface(iid, &pointer) < 0) {
            pointer = nullptr;
        }
        target = static_cast<I*>(pointer);
    }
    /// `Release` of a non-null interface, which is then null.
    template <class I>
    static void release(I*& target)
    {
        if (target != nullptr) {
            target->Release();
            target = nullptr;
        }
    }

    SAttachInfo m_attachInfo;
    WORD m_wClientFlags;
    char m_dllPath[DLL_PATH_SIZE];
    bool m_isAttached;
    void* m_hModule;
    HRESULT m_attachResult;
    SOrbelInfo m_info;
    bool m_infoValid;
    int m_state;
    Orbel* m_orbel;
    OrbelIDE* m_ide;
    OrbelDebug* m_debug;
    OrbelProfiler2* m_profiler;
    OrbelProject* m_project;
    OrbelDebug2* m_debug2;
    OrbelIDE2* m_ide2;
    OrbelIDE3* m_ide3;
    int m_errorCode;
    char m_errorText[ERROR_TEXT_SIZE];

private:
    void useOrbelPath(const char* orbelPath);
    bool findFromVersionLog();
    void readInfo();
    bool attach(const char* address, WORD port, DWORD channel, DWORD pid);
    std::string attachMessage() const;
    void freeModule();
};

} // namespace kestrix
