// The call frame shared by every wrapper: scalar types and the clause list around each call.

%{
#include "Exceptions.h"
%}

// A null reference argument names its declared type: "kestrix::StrVector & type is null".
%typemap(in, canthrow=1) SWIGTYPE & %{ $1 = ($1_ltype)$input;
  if (!$1) {
    SWIG_CSharpSetPendingExceptionArgument(SWIG_CSharpArgumentNullException, "$1_type type is null", 0);
    return $null;
  } %}

// Records of the automation interface are named without the library's namespace, as its
// headers declare them: "SType const & type is null". A new record of that interface joins
// the list below.
%define KX_AUTOMATION_RECORD(NAME)
%typemap(in, canthrow=1) kestrix::NAME & %{ $1 = ($1_ltype)$input;
  if (!$1) {
    SWIG_CSharpSetPendingExceptionArgument(SWIG_CSharpArgumentNullException, "NAME & type is null", 0);
    return $null;
  } %}
%typemap(in, canthrow=1) const kestrix::NAME & %{ $1 = ($1_ltype)$input;
  if (!$1) {
    SWIG_CSharpSetPendingExceptionArgument(SWIG_CSharpArgumentNullException, "NAME const & type is null", 0);
    return $null;
  } %}
%enddef

KX_AUTOMATION_RECORD(CAddress)
KX_AUTOMATION_RECORD(CCPUInfo)
KX_AUTOMATION_RECORD(CMMUInfo)
KX_AUTOMATION_RECORD(SInfo)
KX_AUTOMATION_RECORD(SOrbelInfo)
KX_AUTOMATION_RECORD(SProcessID)
KX_AUTOMATION_RECORD(SProcessMappingItem)
KX_AUTOMATION_RECORD(SProfilerHistory)
KX_AUTOMATION_RECORD(SRegisterInfo)
KX_AUTOMATION_RECORD(SType)
KX_AUTOMATION_RECORD(SType2)
KX_AUTOMATION_RECORD(SValue)

typedef unsigned char BYTE;
typedef unsigned short WORD;
typedef unsigned int DWORD;
typedef unsigned long long QWORD;
typedef unsigned int ADDRESS;
typedef int HRESULT;

// Sizes and counts cross as one 32-bit word, as the managed side declares them (uint); a
// 64-bit C type here would read undefined upper bits of an argument.
%typemap(ctype) size_t, const size_t & "unsigned int"

// Library exceptions of the four boundary classes become ApplicationException with what();
// every other std::exception, the rest of the family included, becomes IOException.
%exception {
  try {
    $action
  } catch (kestrix::IllegalStateException& e) {
    SWIG_CSharpSetPendingException(SWIG_CSharpApplicationException, e.what());
    return $null;
  } catch (kestrix::IOException& e) {
    SWIG_CSharpSetPendingException(SWIG_CSharpApplicationException, e.what());
    return $null;
  } catch (kestrix::IllegalArgumentException& e) {
    SWIG_CSharpSetPendingException(SWIG_CSharpApplicationException, e.what());
    return $null;
  } catch (kestrix::SystemException& e) {
    SWIG_CSharpSetPendingException(SWIG_CSharpApplicationException, e.what());
    return $null;
  } catch (std::exception& e) {
    SWIG_CSharpSetPendingException(SWIG_CSharpIOException, e.what());
    return $null;
  }
}
