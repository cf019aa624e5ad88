# One selection for a script: starts SnipBench, waits for it, and reads its object, its files and its code. For
# PowerShell 5.1 on Windows and PowerShell 7 on any system.
#
#   snip.ps1 [-Limit SECONDS] -Program PROGRAM [-Options 'options of SnipBench']
#
# Prints the path of the image and its size. Ends with 0; with 1 if nothing was selected or saved; with 124 if the limit
# of time passed; with 127 if the program can't be started; else as SnipBench did. The image stays in a new temporary
# folder.
param(
    [Parameter(Mandatory)][string]$Program,
    [string]$Options = '',
    [int]$Limit = 60
)
$ErrorActionPreference = 'Stop'

$causes = @{
    'Wrong Parameter(s)'            = 'an option is wrong, or the region isn''t within the picture'
    'Failed to load file'           = 'the picture can''t be read or shown'
    'Failed to initialize systems'  = 'there is no display, or none of that name'
    'Failed to create window'       = 'the overlay can''t be shown; the log says why'
    'Failed to initialize renderer' = 'the overlay can''t be shown; the log says why'
}

$shots = Join-Path ([IO.Path]::GetTempPath()) ([Guid]::NewGuid())
[void](New-Item -ItemType Directory $shots)

# The folder goes again unless there is a selection in it, also after Ctrl+C.
$isKept = $false
try {
    $start = New-Object Diagnostics.ProcessStartInfo
    $start.FileName = $Program
    $start.Arguments = "-s true -o `"$shots`" $Options"
    $start.UseShellExecute = $false
    $start.RedirectStandardOutput = $true
    try {
        $run = [Diagnostics.Process]::Start($start)
    } catch {
        [Console]::Error.WriteLine("$Program can't be started.")
        exit 127
    }
    $output = $run.StandardOutput.ReadToEndAsync()
    if (-not $run.WaitForExit(1000 * $Limit)) {
        $run.Kill() # keyboard and pointer are free again
        $run.WaitForExit()
        [Console]::Error.WriteLine("No selection within $Limit seconds.")
        exit 124
    }

    # The object is the last thing on standard output, from a line that is { to one that is }.
    $answer = $null
    if ($output.Result -match '(?ms)^(\{\r?$.*^\})\r?$') {
        $answer = $Matches[1] | ConvertFrom-Json
    }
    if ($answer -and $answer.code -ne 0) {
        [Console]::Error.WriteLine("$($answer.name): $($causes[$answer.name]).")
        exit $run.ExitCode
    }
    if ($run.ExitCode -ne 0) {
        [Console]::Error.WriteLine('An error; .orvik/Logs in your home may say more.')
        exit $run.ExitCode
    }

    # Both files have the same name. The JSON file comes last: where it is, the image is whole. The braces in the names
    # are plain characters, as are the brackets that -LiteralPath is for.
    $meta = Get-ChildItem -LiteralPath $shots -Filter *.json | Select-Object -First 1
    if (-not $meta) {
        $isEmpty = -not (Get-ChildItem -LiteralPath $shots)
        $text = if ($isEmpty) { 'Nothing was selected.' } else { 'The selection couldn''t be saved.' }
        [Console]::Error.WriteLine($text)
        exit 1
    }
    $image = Get-ChildItem -LiteralPath $shots |
        Where-Object { $_.BaseName -eq $meta.BaseName -and $_.Name -ne $meta.Name }
    $size = (Get-Content -LiteralPath $meta.FullName -Raw | ConvertFrom-Json).image.size
    $isKept = $true
    Write-Output "$($image.FullName) $($size.width)x$($size.height)"
    exit 0
} finally {
    if (-not $isKept) {
        Remove-Item -LiteralPath $shots -Recurse -Force -ErrorAction SilentlyContinue
    }
}
