// FpStateGuard: puts MXCSR and the x87 control word into the state a member
// needs for the length of one call, and puts back exactly what it changed.
//
// A register is written only when its test on entry fails, and only then is
// it restored, so a caller already in the right state pays one read and one
// compare.  Exception masks and sticky flags are never altered by the guard
// itself; but when the guard has written MXCSR, the restore loads the value
// read on entry, and the flags raised during the call are lost with it.
//
// The compiler does not treat the control registers as inputs of floating-
// point arithmetic, so every register access is an asm volatile with a
// memory clobber: loads of the sources cannot rise above the entry and
// stores of the results cannot sink below the exit.  Values that live only
// in registers (a by-value constant argument) are pinned with opaque() after
// entry by the frame.
#pragma once

#include <cstdint>

namespace orv {

// An MXCSR mode: the register passes when (MXCSR & test) == target; else it
// is written as (MXCSR & keep) | target.  0xE040 covers rounding control
// (0x6000), flush-to-zero (0x8000) and denormals-are-zero (0x0040).
struct MxcsrMode {
    uint32_t test;
    uint32_t target;
    uint32_t keep;
};
// An x87 mode: precision and rounding control (mask 0x0F00) must equal the
// target; else they are set to it, the exception masks kept.
struct X87Mode {
    uint16_t target;
};

inline constexpr MxcsrMode kMxcsrNone{0, 0, 0};
inline constexpr MxcsrMode kMxcsrNearest{0xE040, 0x0000, 0xFFFF1FBF};
inline constexpr MxcsrMode kMxcsrDown{0xE040, 0x2000, 0xFFFF1FBF};
inline constexpr MxcsrMode kMxcsrUp{0xE040, 0x4000, 0xFFFF1FBF};
inline constexpr MxcsrMode kMxcsrTowardZero{0xE040, 0x6000, 0xFFFF1FBF};
// Round to nearest and no flush-to-zero, but denormals-are-zero stays as
// the caller set it.
inline constexpr MxcsrMode kMxcsrNearestKeepDaz{0xE000, 0x0000, 0xFFFF1FFF};

inline constexpr X87Mode kX87None{0};
inline constexpr X87Mode kX87Double{0x0200};    // 53-bit precision, nearest
inline constexpr X87Mode kX87Extended{0x0300};  // 64-bit precision, nearest
inline constexpr uint16_t kX87ControlMask = 0x0F00;
inline constexpr uint16_t kX87Keep = 0xF0FF;

// The guard of one member: an MXCSR mode, an x87 mode, or both (the x87
// word is entered first).
struct FpModes {
    MxcsrMode mxcsr;
    X87Mode x87;
    constexpr bool guardsMxcsr() const { return mxcsr.test != 0; }
    constexpr bool guardsX87() const { return x87.target != 0; }
};

inline constexpr FpModes kGuardNone{kMxcsrNone, kX87None};
inline constexpr FpModes kGuardNearest{kMxcsrNearest, kX87None};
inline constexpr FpModes kGuardDown{kMxcsrDown, kX87None};
inline constexpr FpModes kGuardUp{kMxcsrUp, kX87None};
inline constexpr FpModes kGuardTowardZero{kMxcsrTowardZero, kX87None};
inline constexpr FpModes kGuardNearestKeepDaz{kMxcsrNearestKeepDaz, kX87None};
inline constexpr FpModes kGuardX87Double{kMxcsrNone, kX87Double};
inline constexpr FpModes kGuardX87Extended{kMxcsrNone, kX87Extended};
inline constexpr FpModes kGuardX87ExtendedThenNearest{kMxcsrNearest, kX87Extended};
inline constexpr FpModes kGuardX87ExtendedThenNearestKeepDaz{kMxcsrNearestKeepDaz, kX87Extended};

inline uint32_t readMxcsr() {
    uint32_t v;
    asm volatile("stmxcsr %0" : "=m"(v)::"memory");
    return v;
}
inline void writeMxcsr(uint32_t v) { asm volatile("ldmxcsr %0" ::"m"(v) : "memory"); }
inline uint16_t readX87ControlWord() {
    uint16_t v;
    asm volatile("fnstcw %0" : "=m"(v)::"memory");
    return v;
}
inline void writeX87ControlWord(uint16_t v) { asm volatile("fldcw %0" ::"m"(v) : "memory"); }

// Which register comes back first on leaving.
enum class RestoreOrder { MxcsrFirst, X87First };

class FpStateGuard {
public:
    // RestoreFlags bits.
    static constexpr uint8_t kRestoreMxcsr = 1;
    static constexpr uint8_t kRestoreX87 = 2;

    template <FpModes M>
    void enter() {
        if constexpr (M.guardsX87()) {
            savedX87_ = readX87ControlWord();
            if ((savedX87_ & kX87ControlMask) != M.x87.target) {
                writeX87ControlWord(uint16_t((savedX87_ & kX87Keep) | M.x87.target));
                restoreFlags_ |= kRestoreX87;
            }
        }
        if constexpr (M.guardsMxcsr()) {
            savedMxcsr_ = readMxcsr();
            if ((savedMxcsr_ & M.mxcsr.test) != M.mxcsr.target) {
                writeMxcsr((savedMxcsr_ & M.mxcsr.keep) | M.mxcsr.target);
                restoreFlags_ |= kRestoreMxcsr;
            }
        }
    }

    template <RestoreOrder O>
    void leave() {
        if constexpr (O == RestoreOrder::MxcsrFirst) {
            restoreMxcsr();
            restoreX87();
        } else {
            restoreX87();
            restoreMxcsr();
        }
    }

    uint8_t restoreFlags() const { return restoreFlags_; }

private:
    void restoreMxcsr() {
        if (restoreFlags_ & kRestoreMxcsr) writeMxcsr(savedMxcsr_);
    }
    void restoreX87() {
        if (restoreFlags_ & kRestoreX87) writeX87ControlWord(savedX87_);
    }

    uint32_t savedMxcsr_ = 0;
    uint16_t savedX87_ = 0;
    uint8_t restoreFlags_ = 0;
};

}  // namespace orv
