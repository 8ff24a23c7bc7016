/* A frame with a known layout for the unwinding tests:
 * r4, r7 and lr pushed, 20 bytes of locals, r7 as frame pointer. */
    .syntax unified
    .thumb
    .cfi_sections .debug_frame
    .text
    .global unwind_probe
    .type unwind_probe, %function
    .thumb_func
unwind_probe:
    .cfi_startproc
    push {r4, r7, lr}
    .cfi_def_cfa_offset 12
    .cfi_offset r4, -12
    .cfi_offset r7, -8
    .cfi_offset lr, -4
    sub sp, sp, #20
    .cfi_def_cfa_offset 32
    add r7, sp, #0
    .cfi_def_cfa_register r7
    .global unwind_probe_body
unwind_probe_body:
    nop
    mov sp, r7
    add sp, sp, #20
    pop {r4, r7, pc}
    .cfi_endproc
    .size unwind_probe, . - unwind_probe
