// Sending a message: keeps every register that can hold an argument, looks the method up and jumps to it. A
// message to nothing answers nothing. x86-64, System V calls.

.macro KEEP_ARGUMENTS
    pushq %rbp
    movq %rsp, %rbp
    subq $208, %rsp
    andq $-16, %rsp
    movq %rdi, 0(%rsp)
    movq %rsi, 8(%rsp)
    movq %rdx, 16(%rsp)
    movq %rcx, 24(%rsp)
    movq %r8, 32(%rsp)
    movq %r9, 40(%rsp)
    movq %rax, 48(%rsp)
    movaps %xmm0, 64(%rsp)
    movaps %xmm1, 80(%rsp)
    movaps %xmm2, 96(%rsp)
    movaps %xmm3, 112(%rsp)
    movaps %xmm4, 128(%rsp)
    movaps %xmm5, 144(%rsp)
    movaps %xmm6, 160(%rsp)
    movaps %xmm7, 176(%rsp)
.endm

// The method looked up is left in r11.
.macro BRING_BACK_ARGUMENTS
    movq %rax, %r11
    movq 0(%rsp), %rdi
    movq 8(%rsp), %rsi
    movq 16(%rsp), %rdx
    movq 24(%rsp), %rcx
    movq 32(%rsp), %r8
    movq 40(%rsp), %r9
    movq 48(%rsp), %rax
    movaps 64(%rsp), %xmm0
    movaps 80(%rsp), %xmm1
    movaps 96(%rsp), %xmm2
    movaps 112(%rsp), %xmm3
    movaps 128(%rsp), %xmm4
    movaps 144(%rsp), %xmm5
    movaps 160(%rsp), %xmm6
    movaps 176(%rsp), %xmm7
    leave
.endm

.text

.globl objc_msgSend
.type objc_msgSend, @function
objc_msgSend:
    testq %rdi, %rdi
    jz 1f
    KEEP_ARGUMENTS
    call runtimeLookUp@PLT
    BRING_BACK_ARGUMENTS
    jmp *%r11
1:
    xorl %eax, %eax
    xorl %edx, %edx
    xorps %xmm0, %xmm0
    xorps %xmm1, %xmm1
    ret

// For results too large for registers: their place comes first and the receiver second.
.globl objc_msgSend_stret
.type objc_msgSend_stret, @function
objc_msgSend_stret:
    testq %rsi, %rsi
    jz 1f
    KEEP_ARGUMENTS
    movq %rsi, %rdi
    movq %rdx, %rsi
    call runtimeLookUp@PLT
    BRING_BACK_ARGUMENTS
    jmp *%r11
1:
    movq %rdi, %rax
    ret

.globl objc_msgSendSuper2
.type objc_msgSendSuper2, @function
objc_msgSendSuper2:
    KEEP_ARGUMENTS
    call runtimeLookUpSuper@PLT
    BRING_BACK_ARGUMENTS
    movq (%rdi), %rdi
    jmp *%r11

.section .note.GNU-stack, "", @progbits
