#include "base/messages.h"

#include <array>
#include <cstddef>

namespace kavrel {
namespace {

struct Entry {
    Message message;
    const char* text;
};

// In the order of the enumeration, so that a message is found by its number.
constexpr std::array kCatalogue = {
    // Arguments
    Entry{Message::UnknownError, "Unknown Error"},
    Entry{Message::InvalidParameter, "Invalid parameter!"},
    Entry{Message::IndexOutOfBounds, "Index out of bounds"},
    Entry{Message::NullCopySource, "NULL argument to m_copy_err()"},
    Entry{Message::NotAValidObject, "Parameter not a valid object!"},

    // Sentences and the parser
    Entry{Message::NullCommand, "Null command not allowed"},
    Entry{Message::CommandLength, "Command must be 3 or 5 characters long"},
    Entry{Message::UnknownEventType, "Unknown event type!"},
    Entry{Message::NoEventsMustBeSet, "NoEvents must be set!"},
    Entry{Message::PortMustBeEnabled, "Port must be enabled!"},
    Entry{Message::PortMustNotBeEnabled, "Port must not be enabled!"},
    Entry{Message::AutodetectNotAllowed, "Autodetect mode not allowed"},

    // Geodesy
    Entry{Message::UnknownDatum, "Unknown datum!"},
    Entry{Message::InvalidDegrees, "Invalid value of Degrees. Must be between 0 and 90!"},
    Entry{Message::InvalidLatitude, "Invalid latitude. Must be between -PI/2 and PI/2"},
    Entry{Message::SetCustomDatumInstead, "Set Position.CustomDatum instead!"},
    Entry{Message::CustomDatumNull, "CustomDatum may not be null."},
    Entry{Message::UnknownGrid, "Unknown grid!"},
    Entry{Message::SetCustomGridInstead, "Set Position.CustomGrid instead!"},
    Entry{Message::CustomGridNull, "CustomGrid may not be null."},
    Entry{Message::InvalidZone, "Invalid Zone for this grid!"},
    Entry{Message::ZoneMissing, "Zone must be specified for this grid"},
    Entry{Message::GridNotSet, "Grid not set!"},
    Entry{Message::PositionOutsideGrid, "Position outside grid"},
    Entry{Message::PositionNull, "Position may not be null."},
    Entry{Message::UnknownDistanceMethod, "Unknown method to calculate distance."},
    Entry{Message::UnknownBearingMethod, "Unknown method to calculate bearing."},
    Entry{Message::UnknownMoveMethod, "Unknown method."},

    // Serial port and threads
    Entry{Message::PortDoesNotExist, "Comm port does not exist"},
    Entry{Message::PortInUse, "Comm port in use!"},
    Entry{Message::PortNotOpened, "Could not open comm port!"},
    Entry{Message::UnexpectedPortError, "Unexpected com port error."},
    Entry{Message::UnknownBaudRate, "Unknown baudrate!"},
    Entry{Message::DcbNotSet, "Could not set DCB"},
    Entry{Message::PortIsOpened, "Cannot set port is opened."},
    Entry{Message::RtsIsHandshake, "Cannot set RTS when RTS handshake is selected"},
    Entry{Message::RtsFailed, "Error setting RTS"},
    Entry{Message::DtrIsHandshake, "Cannot set DTR when DTR handshake is selected"},
    Entry{Message::DtrFailed, "Error setting DTR"},
    Entry{Message::DsrFailed, "Error reading DSR"},
    Entry{Message::BreakFailed, "Error setting Break"},
    Entry{Message::InfraredFailed, "Error setting IR"},
    Entry{Message::ThreadNotCreated, "Could not create thread"},
    Entry{Message::PortReadFailed, "Error reading data from serial port."},
    Entry{Message::WaitCommEventFailed, "WaitCommEvent() Error."},

    // Event window
    Entry{Message::WindowClassFailed, "Error register window class"},
    Entry{Message::WindowFailed, "Error creating window"},
    Entry{Message::WindowMissing, "Could not create window"},

    // Shared receiver
    Entry{Message::RavelinMissing,
          "Ravelin not installed! Cannot create object RavelinApi::Simple"},

    // Registry
    Entry{Message::SubkeyNotCreated, "Error creating or opening subkey"},
    Entry{Message::SubkeyNotOpened, "Error opening subkey"},
    Entry{Message::SubkeyNotDeleted, "Error deleting register subkey"},
    Entry{Message::ValueNotDeleted, "Error deleting register value"},
    Entry{Message::SubkeyNamesFailed, "Error reading subkey names"},
    Entry{Message::ValueNamesFailed, "Error reading value names"},
    Entry{Message::ValueNotRead, "Error reading registry value"},
    Entry{Message::ValueNotSet, "Error setting value"},

    // Shared with related components; nothing here raises them
    Entry{Message::UnexpectedError, "Unexcpected error"},
    Entry{Message::PortAlreadyOpened, "Comm port already opened!"},
    Entry{Message::CommandExecuting, "Command already executing!"},
    Entry{Message::GridWithoutZones, "Grid does not support Zones!"},
    Entry{Message::NotAWaypoints, "Paramenter not an Waypoints object!"},
    Entry{Message::ThreadNotEnded, "Failed to end serial thread!"},
    Entry{Message::IpServerFailed, "Error connecting to IP server."},
    Entry{Message::WinSockFailed, "Error opening WinSock"},
    Entry{Message::FileFailed, "Error opening, reading, writing or seeking file"},
    Entry{Message::InvalidImage, "Invalid image format"},
    Entry{Message::OutOfMemory, "Out of memory"},
    Entry{Message::UnknownFileFormat, "Unknown file format"},
    Entry{Message::UnknownFileVersion, "Unknown version of file format"},
    Entry{Message::TrueColorGif, "Cannot handle true color GIF!"},
    Entry{Message::MapLibraryMissing, "Map library not installed!"},
};

constexpr bool IsInOrder() {
    for (std::size_t i = 0; i < kCatalogue.size(); ++i) {
        if (kCatalogue[i].message != static_cast<Message>(i)) return false;
    }
    return true;
}
static_assert(kCatalogue.size() == static_cast<std::size_t>(Message::Count));
static_assert(IsInOrder());

}  // namespace

std::string_view MessageText(Message message) {
    return kCatalogue[message < Message::Count ? static_cast<std::size_t>(message) : 0].text;
}

}  // namespace kavrel
