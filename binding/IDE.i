// Quillon as an application: the IDE controller, the answer of its window commands and the
// option value record with its owner.

%{
#include "CIDEController.h"
#include "CIDEData.h"
#include "COptionValue.h"
#include "SOptionValue.h"
%}

%shared_ptr(kestrix::CIDEController)

namespace kestrix {
class IDescriptor;
}

// The size field is the library's business.
%ignore kestrix::SOptionValue::m_dwSize;
// The text in is a copy that the record keeps for the call it is made for.
%warnfilter(451) kestrix::SOptionValue::m_pszStringIn;
%include "SOptionValue.h"

%include "CIDEData.h"
%include "COptionValue.h"

// The controller's base is the library's own: the managed side sees the controller alone.
%warnfilter(401) kestrix::CIDEController;
%include "CIDEController.h"
