# add_csharp_program(TARGET EXE SOURCES...): compiles a C# program together with the generated
# proxies into one assembly, so that it reaches their internal handles too.
find_program(MCS mcs REQUIRED)

function(add_csharp_program target exe)
  set(sources ${ARGN})
  string(REPLACE ";" " " source_words "${sources}")
  add_custom_command(OUTPUT ${exe}
    COMMAND sh -c "${MCS} -nologo -warn:0 -out:${exe} ${KESTRIX_CS_DIR}/*.cs ${source_words}"
    DEPENDS OrbelCS ${sources}
    COMMENT "Compiling ${target}")
  add_custom_target(${target} ALL DEPENDS ${exe})
endfunction()
