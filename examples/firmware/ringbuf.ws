# Workspace of examples/ring_buffer.yaml: the example firmware on a simulated Cortex-M3.
target:
  cpu: cortex-m3
  clock: 16000000
  memory:
    - name: flash
      start: 0x00000000
      size: 0x40000
      access: rx
    - name: sram
      start: 0x20000000
      size: 0x10000
      access: rwx
    - name: periph            # the ADC and UART registers that main touches
      start: 0x40010000
      size: 0x10000
      access: rw
download:
  - file: build/firmware.elf
test:
  maxInstructions: 100000000
