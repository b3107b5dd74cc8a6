// The message catalogue: every text that the library reports, once.
//
// The texts are fixed, misspellings included: hosts compare them. Some are raised by nothing here,
// because the catalogue is shared with related components.
#pragma once

#include <cstdint>
#include <string_view>

namespace kavrel {

enum class Message : std::uint8_t {
    // Arguments
    UnknownError,
    InvalidParameter,
    IndexOutOfBounds,
    NullCopySource,
    NotAValidObject,

    // Sentences and the parser
    NullCommand,
    CommandLength,
    UnknownEventType,
    NoEventsMustBeSet,
    PortMustBeEnabled,
    PortMustNotBeEnabled,
    AutodetectNotAllowed,

    // Geodesy
    UnknownDatum,
    InvalidDegrees,
    InvalidLatitude,
    SetCustomDatumInstead,
    CustomDatumNull,
    UnknownGrid,
    SetCustomGridInstead,
    CustomGridNull,
    InvalidZone,
    ZoneMissing,
    GridNotSet,
    PositionOutsideGrid,
    PositionNull,
    UnknownDistanceMethod,
    UnknownBearingMethod,
    UnknownMoveMethod,

    // Serial port and threads
    PortDoesNotExist,
    PortInUse,
    PortNotOpened,
    UnexpectedPortError,
    UnknownBaudRate,
    DcbNotSet,
    PortIsOpened,
    RtsIsHandshake,
    RtsFailed,
    DtrIsHandshake,
    DtrFailed,
    DsrFailed,
    BreakFailed,
    InfraredFailed,
    ThreadNotCreated,
    PortReadFailed,
    WaitCommEventFailed,

    // Event window
    WindowClassFailed,
    WindowFailed,
    WindowMissing,

    // Shared receiver
    RavelinMissing,

    // Registry
    SubkeyNotCreated,
    SubkeyNotOpened,
    SubkeyNotDeleted,
    ValueNotDeleted,
    SubkeyNamesFailed,
    ValueNamesFailed,
    ValueNotRead,
    ValueNotSet,

    // Shared with related components; nothing here raises them
    UnexpectedError,
    PortAlreadyOpened,
    CommandExecuting,
    GridWithoutZones,
    NotAWaypoints,
    ThreadNotEnded,
    IpServerFailed,
    WinSockFailed,
    FileFailed,
    InvalidImage,
    OutOfMemory,
    UnknownFileFormat,
    UnknownFileVersion,
    TrueColorGif,
    MapLibraryMissing,

    Count
};

// The catalogue's text, which is zero-terminated. A number beyond the catalogue gets
// UnknownError's.
std::string_view MessageText(Message message);

}  // namespace kavrel
