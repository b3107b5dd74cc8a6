# Prints a fix each second from a receiver on a serial port, under Windows PowerShell:
#     powershell -File live_fix.ps1 -Port 3 -Rate 4800
# The process and the registered DLL must be of the same width.
#
# Events: PowerShell binds late and sees none of them. A host that wants them imports the type
# library (tlbimp KavrelCE.dll), loads the assembly, uses Register-ObjectEvent, and dispatches
# messages meanwhile. Asking, as here, is simpler.
param(
    [Parameter(Mandatory)] [int] $Port,
    [int] $Rate = 4800,
    [int] $Seconds = 10
)
$ErrorActionPreference = 'Stop'

$kvFix2D = 2
$kvSpeedKilometresPerHour = 2

$parser = New-Object -ComObject KavrelCE.NmeaParser
try {
    # Both can only be set while the port is disabled.
    $parser.NoEvents = $true
    $parser.ComPort = $Port
    $parser.BaudRate = $Rate
    $parser.PortEnabled = $true

    for ($i = 0; $i -lt $Seconds; $i++) {
        # Waits for the next fix, at most two seconds.
        $fix = $parser.GetGpsFix(2000, $kvFix2D)
        if ($null -eq $fix) {
            'no fix'
            continue
        }
        $place = $fix.Position
        $movement = $parser.GetMovement(0)
        $speed = if ($null -eq $movement) { 0 } else { $movement.Speed($kvSpeedKilometresPerHour) }
        '{0}: {1}, {2}, {3:N1} km/h' -f $fix.UTC, $place.LatitudeString(0), $place.LongitudeString(0), $speed
    }
}
catch {
    # "Comm port does not exist" is 0x80042717, with the code 10007 in its low bits.
    Write-Error ('{0} (0x{1:X8})' -f $_.Exception.Message, $_.Exception.HResult)
}
finally {
    # The collector may take its time; the port is closed here.
    $parser.PortEnabled = $false
    [void] [Runtime.InteropServices.Marshal]::ReleaseComObject($parser)
}
