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

typedef unsigned char BYTE;
typedef unsigned short WORD;
typedef unsigned int DWORD;
typedef unsigned long long QWORD;
typedef unsigned int ADDRESS;

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
