// Exported constant tables, written out from their rules by the preprocessor
// so that they stay constant data with no run-time initialisation.
#include "orucv.h"

#define REP2(M, i) M(i) M((i) + 1)
#define REP4(M, i) REP2(M, i) REP2(M, (i) + 2)
#define REP8(M, i) REP4(M, i) REP4(M, (i) + 4)
#define REP16(M, i) REP8(M, i) REP8(M, (i) + 8)
#define REP32(M, i) REP16(M, i) REP16(M, (i) + 16)
#define REP64(M, i) REP32(M, i) REP32(M, (i) + 32)
#define REP128(M, i) REP64(M, i) REP64(M, (i) + 64)
#define REP256(M, i) REP128(M, i) REP128(M, (i) + 128)

// Entry i holds i - 128: signed and unsigned bytes v both sit at v + 128.
#define TO_FLOAT(i) static_cast<Oru32f>((i) - 128),
extern "C" const Oru32f a6__orcv8to32f[384] = {REP256(TO_FLOAT, 0) REP128(TO_FLOAT, 256)};

// Byte j of row c selects channel c of interleaved 3-channel pixels.
#define COI_BYTE(j) static_cast<Oru8u>((j) % 3 == COI_ROW ? 0xFF : 0x00),
#define COI_ROW 0
extern "C" const Oru8u _orcvCoiMask_A6[3][24] = {
    {REP16(COI_BYTE, 0) REP8(COI_BYTE, 16)},
#undef COI_ROW
#define COI_ROW 1
    {REP16(COI_BYTE, 0) REP8(COI_BYTE, 16)},
#undef COI_ROW
#define COI_ROW 2
    {REP16(COI_BYTE, 0) REP8(COI_BYTE, 16)},
};

// Bit b of the row index sets byte (3 * b) mod 8; equivalently byte j
// follows bit (3 * j) mod 8, since 3 * 3 = 1 mod 8.
#define SHUF_BYTE(k, j) static_cast<Oru8u>(((k) >> ((3 * (j)) % 8) & 1) ? 0xFF : 0x00)
#define SHUF_ROW(k)                                                                                       \
    {SHUF_BYTE(k, 0), SHUF_BYTE(k, 1), SHUF_BYTE(k, 2), SHUF_BYTE(k, 3), SHUF_BYTE(k, 4), SHUF_BYTE(k, 5), \
     SHUF_BYTE(k, 6), SHUF_BYTE(k, 7)},
extern "C" const Oru8u _orcvMaskShuffTable_A6[256][8] = {REP256(SHUF_ROW, 0)};

extern "C" const Oru8u _orcvAdd128_A6[8] = {0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
