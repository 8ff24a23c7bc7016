// Output streams, held by shared pointers on the managed side.

%{
#include "IStream.h"
#include "CFileStream.h"
#include "CStringStream.h"
%}

%shared_ptr(kestrix::IStream)
%shared_ptr(kestrix::CFileStream)
%shared_ptr(kestrix::CStringStream)

%include "IStream.h"
%include "CFileStream.h"
%include "CStringStream.h"
