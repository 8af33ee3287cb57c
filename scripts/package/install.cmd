@echo off
rem Registers the plug-in with the player, for the 32-bit and, on a 64-bit system, the 64-bit one.
rem Needs a processor with SSE2.
rem Exit code: 0 when it is registered for at least one player and nothing failed, else 1.
setlocal
set "here=%~dp0"
set "playersRegistrar=HKCR\CLSID\{5569E7F5-424B-4B93-89CA-79D17924689A}"
set registered=0
set "rightsTest=HKLM\Software\Classes\Clarivex.RightsTest"
set failed=0

rem Only an administrator may enter classes for the whole machine.
reg add "%rightsTest%" /f >nul 2>&1
if errorlevel 1 (
    echo Clarivex needs administrator rights to be installed.
    echo Right-click install.cmd and choose "Run as administrator".
    exit /b 1
)
reg delete "%rightsTest%" /f >nul 2>&1

set "system=%windir%\System32"
if defined PROCESSOR_ARCHITEW6432 set "system=%windir%\Sysnative"
if exist "%windir%\SysWOW64\regsvr32.exe" (
    call :Register x64 64 "%system%\regsvr32.exe"
    call :Register x86 32 "%windir%\SysWOW64\regsvr32.exe"
) else (
    call :Register x86 32 "%system%\regsvr32.exe"
)

if %failed%==1 exit /b 1
if %registered%==0 (
    echo Windows Media Player is not installed: its plug-in registrar is missing.
    echo Turn it on under "Turn Windows features on or off" ^> "Media Features", then run install.cmd again.
    exit /b 1
)
echo Clarivex is installed. Switch it on in the player: Tools ^> Plug-ins ^> Clarivex Plugin.
exit /b 0

:Register
reg query "%playersRegistrar%" /reg:%2 >nul 2>&1
if errorlevel 1 (
    echo There is no %2-bit player on this system; nothing to do for it.
    exit /b 0
)
%3 /s "%here%%1\WMP_CVX.dll"
if errorlevel 1 (
    echo %1\WMP_CVX.dll could not be registered for the %2-bit player: regsvr32 ended with code %errorlevel%.
    if errorlevel 3 if not errorlevel 4 if "%1" == "x86" echo It could not be loaded. It may miss a processor with SSE2.
    set failed=1
    exit /b 1
)
echo Registered for the %2-bit player.
set registered=1
exit /b 0
