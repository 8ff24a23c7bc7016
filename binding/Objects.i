// Read-only objects of the automation library: symbols, stack frames, disassembly, special
// function registers, partitions and expression types, with their lists. They belong to
// Quillon: the managed side reads them and its delete releases nothing.

%{
#include "IVariable.h"
#include "IFunction.h"
#include "IModule.h"
#include "IPartition.h"
#include "IStackFrame.h"
#include "IDisassemblyLine.h"
#include "ISFR.h"
#include "ISFRValueMap.h"
#include "IGlobals.h"
#include "IStackFrameInfo.h"
#include "IDisassemblyBlock.h"
#include "ICPUSFR.h"
#include "IConfiguration.h"
#include "IExpressionType.h"
#include "IVectorDisassemblyLines.h"
#include "IVectorFunctions.h"
#include "IVectorModules.h"
#include "IVectorPartitions.h"
#include "IVectorSFRs.h"
#include "IVectorStackFrames.h"
#include "IVectorValueMap.h"
#include "IVectorVariables.h"
%}

KX_PASS_THROUGH(IVariable)
KX_PASS_THROUGH(IFunction)
KX_PASS_THROUGH(IModule)
KX_PASS_THROUGH(IPartition)
KX_PASS_THROUGH(IStackFrame)
KX_PASS_THROUGH(IDisassemblyLine)
KX_PASS_THROUGH(ISFR)
KX_PASS_THROUGH(ISFRValueMap)
KX_PASS_THROUGH(IGlobals)
KX_PASS_THROUGH(IStackFrameInfo)
KX_PASS_THROUGH(IDisassemblyBlock)
KX_PASS_THROUGH(ICPUSFR)
KX_PASS_THROUGH(IConfiguration)
KX_PASS_THROUGH(IExpressionType)
KX_PASS_THROUGH(IVectorDisassemblyLines)
KX_PASS_THROUGH(IVectorFunctions)
KX_PASS_THROUGH(IVectorModules)
KX_PASS_THROUGH(IVectorPartitions)
KX_PASS_THROUGH(IVectorSFRs)
KX_PASS_THROUGH(IVectorStackFrames)
KX_PASS_THROUGH(IVectorValueMap)
KX_PASS_THROUGH(IVectorVariables)

// IUnknown stays with the automation client.
%warnfilter(401) kestrix::IGlobals;
%warnfilter(401) kestrix::IStackFrameInfo;
%warnfilter(401) kestrix::IDisassemblyBlock;
%warnfilter(401) kestrix::ICPUSFR;
%warnfilter(401) kestrix::IConfiguration;
%warnfilter(401) kestrix::IExpressionType;

%include "IModule.h"
%include "IPartition.h"
%include "IVariable.h"
%include "IFunction.h"
%include "IStackFrame.h"
%include "IDisassemblyLine.h"
%include "ISFRValueMap.h"
%include "ISFR.h"
%include "IVectorDisassemblyLines.h"
%include "IVectorFunctions.h"
%include "IVectorModules.h"
%include "IVectorPartitions.h"
%include "IVectorSFRs.h"
%include "IVectorStackFrames.h"
%include "IVectorValueMap.h"
%include "IVectorVariables.h"
%include "IGlobals.h"
%include "IStackFrameInfo.h"
%include "IDisassemblyBlock.h"
%include "ICPUSFR.h"
%include "IConfiguration.h"
%include "IExpressionType.h"
