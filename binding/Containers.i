// The container families. A new vector or map member is one %template line here (or in the
// area file of its element class).

%{
#include "Containers.h"
#include "StrStrMapIterator.h"
%}

%template(StrVector) std::vector<std::string>;
%template(VectorBYTE) std::vector<BYTE>;
%template(VectorDWORD) std::vector<DWORD>;
%template(StrStrMap) std::map<std::string, std::string>;

%include "Containers.h"

%array_class(BYTE, ucharArray);

%include "StrStrMapIterator.h"

%inline %{
namespace kestrix {
void putStrStrMap(StrStrMap& map, const std::string& key, const std::string& value)
{
    map[key] = value;
}
}
%}
