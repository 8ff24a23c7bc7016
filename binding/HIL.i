// Hardware-in-the-loop channels, and the descriptor objects of the automation library that
// describe them. The descriptors belong to Quillon: the managed side reads them and its
// delete releases nothing.

%{
#include "CHILController.h"
#include "IDescriptor.h"
#include "IVectorVariableDescriptors.h"
#include "IItemDescriptor.h"
#include "IVariableDescriptor.h"
#include "IElementDescriptor.h"
#include "IDataDescriptor.h"
#include "IVectorElementDescriptors.h"
#include "IEnumMap.h"
#include "IVectorEnumMaps.h"
%}

KX_PASS_THROUGH(IDescriptor)
KX_PASS_THROUGH(IVectorVariableDescriptors)
KX_PASS_THROUGH(IItemDescriptor)
KX_PASS_THROUGH(IVariableDescriptor)
KX_PASS_THROUGH(IElementDescriptor)
KX_PASS_THROUGH(IDataDescriptor)
KX_PASS_THROUGH(IVectorElementDescriptors)
KX_PASS_THROUGH(IEnumMap)
KX_PASS_THROUGH(IVectorEnumMaps)

// IUnknown stays with the automation client.
%warnfilter(401) kestrix::IDescriptor;
%include "IDescriptor.h"
%include "IVectorVariableDescriptors.h"
%include "IItemDescriptor.h"
%include "IVariableDescriptor.h"
%include "IElementDescriptor.h"
%include "IDataDescriptor.h"
%include "IVectorElementDescriptors.h"
%include "IEnumMap.h"
%include "IVectorEnumMaps.h"

%shared_ptr(kestrix::CHILController)
%warnfilter(401) kestrix::CHILController;
%include "CHILController.h"
