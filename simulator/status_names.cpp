#include "simulator/status_names.h"

#include <algorithm>
#include <iterator>

namespace kestrel::simulator {

namespace {

struct NamedStatus {
  hipError_t status;
  const char* name;
};

// Named as in HIP's header. Where the header has two names for one status, this is the one that the
// real runtime returns.
constexpr NamedStatus kStatuses[] = {
    {hipSuccess, "hipSuccess"},
    {hipErrorInvalidValue, "hipErrorInvalidValue"},
    {hipErrorOutOfMemory, "hipErrorOutOfMemory"},
    {hipErrorNotInitialized, "hipErrorNotInitialized"},
    {hipErrorDeinitialized, "hipErrorDeinitialized"},
    {hipErrorProfilerDisabled, "hipErrorProfilerDisabled"},
    {hipErrorProfilerNotInitialized, "hipErrorProfilerNotInitialized"},
    {hipErrorProfilerAlreadyStarted, "hipErrorProfilerAlreadyStarted"},
    {hipErrorProfilerAlreadyStopped, "hipErrorProfilerAlreadyStopped"},
    {hipErrorInvalidConfiguration, "hipErrorInvalidConfiguration"},
    {hipErrorInvalidPitchValue, "hipErrorInvalidPitchValue"},
    {hipErrorInvalidSymbol, "hipErrorInvalidSymbol"},
    {hipErrorInvalidDevicePointer, "hipErrorInvalidDevicePointer"},
    {hipErrorInvalidMemcpyDirection, "hipErrorInvalidMemcpyDirection"},
    {hipErrorInsufficientDriver, "hipErrorInsufficientDriver"},
    {hipErrorMissingConfiguration, "hipErrorMissingConfiguration"},
    {hipErrorPriorLaunchFailure, "hipErrorPriorLaunchFailure"},
    {hipErrorInvalidDeviceFunction, "hipErrorInvalidDeviceFunction"},
    {hipErrorNoDevice, "hipErrorNoDevice"},
    {hipErrorInvalidDevice, "hipErrorInvalidDevice"},
    {hipErrorInvalidImage, "hipErrorInvalidImage"},
    {hipErrorInvalidContext, "hipErrorInvalidContext"},
    {hipErrorContextAlreadyCurrent, "hipErrorContextAlreadyCurrent"},
    {hipErrorMapFailed, "hipErrorMapFailed"},
    {hipErrorUnmapFailed, "hipErrorUnmapFailed"},
    {hipErrorArrayIsMapped, "hipErrorArrayIsMapped"},
    {hipErrorAlreadyMapped, "hipErrorAlreadyMapped"},
    {hipErrorNoBinaryForGpu, "hipErrorNoBinaryForGpu"},
    {hipErrorAlreadyAcquired, "hipErrorAlreadyAcquired"},
    {hipErrorNotMapped, "hipErrorNotMapped"},
    {hipErrorNotMappedAsArray, "hipErrorNotMappedAsArray"},
    {hipErrorNotMappedAsPointer, "hipErrorNotMappedAsPointer"},
    {hipErrorECCNotCorrectable, "hipErrorECCNotCorrectable"},
    {hipErrorUnsupportedLimit, "hipErrorUnsupportedLimit"},
    {hipErrorContextAlreadyInUse, "hipErrorContextAlreadyInUse"},
    {hipErrorPeerAccessUnsupported, "hipErrorPeerAccessUnsupported"},
    {hipErrorInvalidKernelFile, "hipErrorInvalidKernelFile"},
    {hipErrorInvalidGraphicsContext, "hipErrorInvalidGraphicsContext"},
    {hipErrorInvalidSource, "hipErrorInvalidSource"},
    {hipErrorFileNotFound, "hipErrorFileNotFound"},
    {hipErrorSharedObjectSymbolNotFound, "hipErrorSharedObjectSymbolNotFound"},
    {hipErrorSharedObjectInitFailed, "hipErrorSharedObjectInitFailed"},
    {hipErrorOperatingSystem, "hipErrorOperatingSystem"},
    {hipErrorInvalidHandle, "hipErrorInvalidHandle"},
    {hipErrorIllegalState, "hipErrorIllegalState"},
    {hipErrorNotFound, "hipErrorNotFound"},
    {hipErrorNotReady, "hipErrorNotReady"},
    {hipErrorIllegalAddress, "hipErrorIllegalAddress"},
    {hipErrorLaunchOutOfResources, "hipErrorLaunchOutOfResources"},
    {hipErrorLaunchTimeOut, "hipErrorLaunchTimeOut"},
    {hipErrorPeerAccessAlreadyEnabled, "hipErrorPeerAccessAlreadyEnabled"},
    {hipErrorPeerAccessNotEnabled, "hipErrorPeerAccessNotEnabled"},
    {hipErrorSetOnActiveProcess, "hipErrorSetOnActiveProcess"},
    {hipErrorContextIsDestroyed, "hipErrorContextIsDestroyed"},
    {hipErrorAssert, "hipErrorAssert"},
    {hipErrorHostMemoryAlreadyRegistered, "hipErrorHostMemoryAlreadyRegistered"},
    {hipErrorHostMemoryNotRegistered, "hipErrorHostMemoryNotRegistered"},
    {hipErrorLaunchFailure, "hipErrorLaunchFailure"},
    {hipErrorCooperativeLaunchTooLarge, "hipErrorCooperativeLaunchTooLarge"},
    {hipErrorNotSupported, "hipErrorNotSupported"},
    {hipErrorStreamCaptureUnsupported, "hipErrorStreamCaptureUnsupported"},
    {hipErrorStreamCaptureInvalidated, "hipErrorStreamCaptureInvalidated"},
    {hipErrorStreamCaptureMerge, "hipErrorStreamCaptureMerge"},
    {hipErrorStreamCaptureUnmatched, "hipErrorStreamCaptureUnmatched"},
    {hipErrorStreamCaptureUnjoined, "hipErrorStreamCaptureUnjoined"},
    {hipErrorStreamCaptureIsolation, "hipErrorStreamCaptureIsolation"},
    {hipErrorStreamCaptureImplicit, "hipErrorStreamCaptureImplicit"},
    {hipErrorCapturedEvent, "hipErrorCapturedEvent"},
    {hipErrorStreamCaptureWrongThread, "hipErrorStreamCaptureWrongThread"},
    {hipErrorGraphExecUpdateFailure, "hipErrorGraphExecUpdateFailure"},
    {hipErrorUnknown, "hipErrorUnknown"},
    {hipErrorRuntimeMemory, "hipErrorRuntimeMemory"},
    {hipErrorRuntimeOther, "hipErrorRuntimeOther"},
    {hipErrorTbd, "hipErrorTbd"},
};

}  // namespace

const char* StatusName(hipError_t status) {
  const auto* found =
      std::find_if(std::begin(kStatuses), std::end(kStatuses),
                   [&](const NamedStatus& named) { return named.status == status; });
  return found != std::end(kStatuses) ? found->name : "hipErrorUnknown";
}

std::optional<hipError_t> StatusNamed(std::string_view name) {
  const auto* found = std::find_if(std::begin(kStatuses), std::end(kStatuses),
                                   [&](const NamedStatus& named) { return named.name == name; });
  return found != std::end(kStatuses) ? std::optional(found->status) : std::nullopt;
}

}  // namespace kestrel::simulator
