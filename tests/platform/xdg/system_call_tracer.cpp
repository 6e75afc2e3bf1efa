// SPDX-License-Identifier: MIT

#include "system_call_tracer.h"

#include <csignal>
#include <set>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tessarel::xdg {
namespace {

constexpr int kSystemCallStop = SIGTRAP | 0x80; // with PTRACE_O_TRACESYSGOOD

/// Returns the signal that stopped the process; 0 if the process has ended.
int waitForHalt(pid_t process) {
    int status = 0;
    if (::waitpid(process, &status, 0) != process || !WIFSTOPPED(status))
        return 0;
    return WSTOPSIG(status);
}

} // namespace

TracedWork::TracedWork(const std::function<void()>& work) : m_process(::fork()) {
    if (m_process == 0) {
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::raise(SIGSTOP); // stops before the work
        while (true) {
            work();
            ::raise(SIGSTOP); // stops after the work
        }
    }
    m_halted = waitForHalt(m_process) == SIGSTOP && ::ptrace(PTRACE_SETOPTIONS, m_process, nullptr,
                                                             PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) == 0;
}

TracedWork::~TracedWork() {
    if (m_halted)
        kill();
}

std::optional<TracedWork::Halt> TracedWork::next() {
    if (m_isDone)
        return std::nullopt;
    ::ptrace(PTRACE_SYSCALL, m_process, nullptr, nullptr);
    const int signal = waitForHalt(m_process);
    m_halted = signal != 0;
    m_isDone = signal != kSystemCallStop;
    m_isInOrder = !m_isDone || signal == SIGSTOP;
    if (m_isDone)
        return std::nullopt;

    __ptrace_syscall_info info{};
    ::ptrace(PTRACE_GET_SYSCALL_INFO, m_process, sizeof info, &info);
    if (info.op != PTRACE_SYSCALL_INFO_ENTRY)
        return Halt{};
    return Halt{static_cast<long>(info.entry.nr), true};
}

void TracedWork::fail(int error) {
    user_regs_struct registers{};
    ::ptrace(PTRACE_GETREGS, m_process, nullptr, &registers);
    registers.orig_rax = ~0ULL; // an invalid number, so that the kernel makes no call
    ::ptrace(PTRACE_SETREGS, m_process, nullptr, &registers);
    if (!next())
        return;
    ::ptrace(PTRACE_GETREGS, m_process, nullptr, &registers);
    registers.rax = static_cast<unsigned long long>(-error);
    ::ptrace(PTRACE_SETREGS, m_process, nullptr, &registers);
}

void TracedWork::kill() {
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
    m_halted = false;
}

bool TracedWork::finish() {
    if (!m_isDone) {
        ::ptrace(PTRACE_CONT, m_process, nullptr, nullptr);
        const int signal = waitForHalt(m_process);
        m_halted = signal != 0;
        m_isInOrder = signal == SIGSTOP;
        m_isDone = true;
    }
    return m_isInOrder;
}

bool nextBeginning(TracedWork& work) {
    while (const auto halt = work.next())
        if (halt->atBeginning)
            return true;
    return false;
}

#if defined(__x86_64__)

namespace {

bool isMemoryOrProcess(long systemCall) {
    static const std::set<long> calls{SYS_mmap,     SYS_munmap,         SYS_mremap,      SYS_brk,
                                      SYS_mprotect, SYS_madvise,        SYS_futex,       SYS_getpid,
                                      SYS_gettid,   SYS_rt_sigprocmask, SYS_sched_yield, SYS_tgkill};
    return calls.count(systemCall) > 0;
}

} // namespace

bool failAt(int number, int error, TracedWork& work) {
    int count = 0;
    while (const auto halt = work.next()) {
        if (!halt->atBeginning || isMemoryOrProcess(halt->systemCall) || ++count < number)
            continue;
        work.fail(error);
        return true;
    }
    return false;
}

#endif

} // namespace tessarel::xdg
