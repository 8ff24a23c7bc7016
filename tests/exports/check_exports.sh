#!/usr/bin/env bash
# Compares the dynamic symbols of libOrbelCS.so with the export catalogue, both ways: every name
# of the catalogue exported, and nothing exported beyond it but the allowance below.
set -euo pipefail
lib=$1
catalogue=$2

# Exported beyond the catalogue, and why.
allowed=(
  # SWIG's own upcasts, which its C# proxies call; the catalogue's names for them are shims
  # beside them (`<Derived>Upcast`, `<Derived>_SWIGSharedPtrUpcast`).
  CSharp_CFileStream_SWIGSmartPtrUpcast
  CSharp_CStringStream_SWIGSmartPtrUpcast
  CSharp_CAnalyzerDocController_SWIGSmartPtrUpcast
  CSharp_CCoverageController_SWIGSmartPtrUpcast
  CSharp_SType2_SWIGUpcast
  CSharp_IVariableDescriptor_SWIGUpcast
  CSharp_IElementDescriptor_SWIGUpcast
  CSharp_OrbelDebug2_SWIGUpcast
  CSharp_OrbelIDE2_SWIGUpcast
  CSharp_OrbelIDE3_SWIGUpcast
  CSharp_OrbelProfiler2_SWIGUpcast
  CSharp_SProfilerStartingPoint_SWIGUpcast
  # Directors: a managed class that implements the script functions is built through these.
  CSharp_new_ICustomFunctions
  CSharp_ICustomFunctions_director_connect
)

have=$(nm -D --defined-only "$lib" | awk '{print $3}' | sort -u)
want=$(sort -u "$catalogue")

status=0

stray=$(comm -23 <(echo "$have") <(echo "$want") | { grep -vxF -f <(printf '%s\n' "${allowed[@]}") || true; })
if [ -n "$stray" ]; then
  echo "exported but not in the catalogue:"
  echo "$stray" | sed 's/^/  /'
  status=1
fi

missing=$(comm -13 <(echo "$have") <(echo "$want"))
if [ -n "$missing" ]; then
  echo "in the catalogue but not exported:"
  echo "$missing" | sed 's/^/  /'
  status=1
fi

present=$(comm -12 <(echo "$have") <(echo "$want") | wc -l)
echo "exports present: $present of $(echo "$want" | wc -l)"
exit $status
