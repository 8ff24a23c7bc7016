// Entry points under the catalogue's names where SWIG 4 names them differently:
// `<Derived>Upcast` for raw pointers and `<Derived>_SWIGSharedPtrUpcast` for shared holders.
// SWIG's own `_SWIGSmartPtrUpcast` stays exported because its C# proxies call it.

// `<Derived>Upcast` of a plain derived record or class; SWIG's own `_SWIGUpcast` stays for
// its C# proxies.
%define KX_UPCAST(DERIVED, BASE)
%wrapper %{
SWIGEXPORT void* SWIGSTDCALL CSharp_##DERIVED##Upcast(void* derived)
{
    return static_cast<kestrix::BASE*>(static_cast<kestrix::DERIVED*>(derived));
}
%}
%enddef

%define KX_SHARED_UPCAST(DERIVED, BASE)
KX_UPCAST(DERIVED, BASE)
%wrapper %{
SWIGEXPORT void* SWIGSTDCALL CSharp_##DERIVED##_SWIGSharedPtrUpcast(void* derived)
{
    // A holder of an empty pointer gives no holder at all.
    auto* holder = static_cast<std::shared_ptr<kestrix::DERIVED>*>(derived);
    return holder != nullptr && *holder ? new std::shared_ptr<kestrix::BASE>(*holder) : nullptr;
}
%}
%enddef


KX_SHARED_UPCAST(CFileStream, IStream)
KX_SHARED_UPCAST(CStringStream, IStream)
KX_SHARED_UPCAST(CAnalyzerDocController, CDocumentController)
KX_SHARED_UPCAST(CCoverageController, CAnalyzerDocController)
KX_UPCAST(SType2, SType)
KX_UPCAST(IVariableDescriptor, IItemDescriptor)
KX_UPCAST(IElementDescriptor, IItemDescriptor)
KX_UPCAST(OrbelDebug2, OrbelDebug)
KX_UPCAST(OrbelIDE2, OrbelIDE)
KX_UPCAST(OrbelIDE3, OrbelIDE2)
KX_UPCAST(OrbelProfiler2, OrbelProfiler)
