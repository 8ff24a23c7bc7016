# add_firmware(NAME <target> OUTPUT <elf> SOURCES <c/S files...> [LINKER_SCRIPT <ld>]
#              [CFLAGS <flags...>] [LIBS <libs...>])
# Builds a Cortex-M ELF into build/firmware/ (FIRMWARE_DIR) with arm-none-eabi-gcc as part of the build. The default flags give a
# Cortex-M3 image with full DWARF; a firmware adds its own optimisation level through CFLAGS.
find_program(ARM_NONE_EABI_GCC arm-none-eabi-gcc REQUIRED)
set(FIRMWARE_DIR ${CMAKE_BINARY_DIR}/firmware)

set(FIRMWARE_BASE_CFLAGS -mcpu=cortex-m3 -mthumb -g3 -gdwarf-4 -ffreestanding -Wall -Wextra
  -ffunction-sections -fdata-sections)

function(add_firmware)
  cmake_parse_arguments(FW "" "NAME;OUTPUT;LINKER_SCRIPT" "SOURCES;CFLAGS;LIBS" ${ARGN})
  set(link_flags -Wl,--gc-sections)
  set(depends ${FW_SOURCES})
  if(FW_LINKER_SCRIPT)
    list(APPEND link_flags -T ${FW_LINKER_SCRIPT})
    list(APPEND depends ${FW_LINKER_SCRIPT})
  endif()
  get_filename_component(out_dir ${FW_OUTPUT} DIRECTORY)
  add_custom_command(OUTPUT ${FW_OUTPUT}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${out_dir}
    COMMAND ${ARM_NONE_EABI_GCC} ${FIRMWARE_BASE_CFLAGS} ${FW_CFLAGS} ${link_flags}
            -o ${FW_OUTPUT} ${FW_SOURCES} ${FW_LIBS}
    DEPENDS ${depends}
    COMMENT "Building firmware ${FW_NAME}"
    VERBATIM)
  add_custom_target(${FW_NAME} ALL DEPENDS ${FW_OUTPUT})
  add_dependencies(firmware_all ${FW_NAME})
endfunction()
