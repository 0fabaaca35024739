// Morphology: the state's constructor and release, and one strip wrapper
// per line of morph_list.h, generated from its operation, shape, pixel type
// and channel count. Each checks in the family's order and hands over.
#include "a6/morph.h"
#include "core/checks.h"
#include "morph_list.h"
#include "orucv.h"

using namespace orucv;

namespace {

enum MorphShape { kRect = 0, kCross = 1, kMask = 100 };
enum MorphOperation { kErode, kDilate };

template <class T>
constexpr int kDataType = sizeof(T) == 1 ? oruDataType8u : oruDataType32f;

template <MorphOperation Operation, MorphShape Shape, class T, int C>
OruStatus morph_strip(const T* src, int srcStep, T* dst, int dstStep, OruSize* roi, OruMorphState* state, int flag) {
    StripFacts facts{};
    if (state)
        facts = StripFacts{state->roiWidth, state->dataType, state->numChannels, state->shape, state->streamRows > 0};
    const StripFacts function{0, kDataType<T>, C, Shape, false};
    if (OruStatus s = check_morph_strip(src, srcStep, dst, dstStep, roi, state ? &facts : nullptr, function,
                                        static_cast<int>(sizeof(T)) * C, flag))
        return s;
    roi->height = a6::morph_strip(state, Operation == kDilate, src, srcStep, dst, dstStep, roi->width, roi->height, flag);
    return oruStsOk;
}

}  // namespace

extern "C" OruStatus oruiMorphologyInitAlloc(int roiWidth, int dataType, int numChannels, OruSize maskSize,
                                             OruPoint anchor, int maskShape, const Oru8u* pMask,
                                             OruMorphState** ppState) {
    if (OruStatus s = check_morph_init(roiWidth, dataType, numChannels, maskSize, anchor, maskShape, pMask, ppState))
        return s;
    return a6::morph_init(roiWidth, dataType, numChannels, maskSize, anchor, maskShape, pMask, ppState);
}

extern "C" OruStatus oruiMorphologyFree(OruMorphState** ppState) {
    if (!ppState) return oruStsNullPointer;
    _orcvFree_(reinterpret_cast<void**>(ppState));
    return oruStsOk;
}

// The strip functions, by kind; the state's two functions are written above.
#define ORUCV_MORPH_State(name, operation, shape, T, C)
#define ORUCV_MORPH_Strip(name, operation, shape, T, C)                                                   \
    extern "C" OruStatus name(const T* pSrc, int srcStep, T* pDst, int dstStep, OruSize* pRoiSize,      \
                              OruMorphState* pState, int stripFlag) {                                   \
        return morph_strip<k##operation, k##shape, T, C>(pSrc, srcStep, pDst, dstStep, pRoiSize, pState, \
                                                         stripFlag);                                    \
    }
#define ORUCV_MORPH_WRAPPER(name, kind, operation, shape, T, C) ORUCV_MORPH_##kind(name, operation, shape, T, C)
ORUCV_MORPH_FUNCTIONS(ORUCV_MORPH_WRAPPER)
