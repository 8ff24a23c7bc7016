// Values and types: the records of the automation interface, the typed scalar and the
// address, symbol and line records.

%{
#include "SType.h"
#include "SType2.h"
#include "SValue.h"
#include "CAddress.h"
#include "CCPUInfo.h"
#include "CMMUInfo.h"
#include "SInfo.h"
#include "SRegisterInfo.h"
#include "SProcessID.h"
#include "SProcessMappingItem.h"
#include "CValueType.h"
#include "CMemAddress.h"
#include "CSymbolInfo.h"
#include "CLineLocation.h"
%}

// The value overlay is read through CValueType only; the managed side just holds it.
%ignore kestrix::SValue::m_qwValue;
%ignore kestrix::SValue::m_llValue;
%ignore kestrix::SValue::m_dwValue;
%ignore kestrix::SValue::m_iValue;
%ignore kestrix::SValue::m_wValue;
%ignore kestrix::SValue::m_sValue;
%ignore kestrix::SValue::m_byValue;
%ignore kestrix::SValue::m_cValue;
%ignore kestrix::SValue::m_fValue;
%ignore kestrix::SValue::m_dValue;
%ignore kestrix::SValue::m_address;

%include "SType.h"
%include "SType2.h"
%include "CAddress.h"
%include "SValue.h"
%include "CCPUInfo.h"
%include "CMMUInfo.h"
%include "SInfo.h"
%include "SRegisterInfo.h"
%include "SProcessID.h"
%include "SProcessMappingItem.h"
%include "CValueType.h"
%include "CMemAddress.h"
%include "CSymbolInfo.h"
%include "CLineLocation.h"
