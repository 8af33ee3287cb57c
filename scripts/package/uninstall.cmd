@echo off
rem Takes the plug-in out of the player's list and out of the registry. The user's settings stay.
rem Exit code: 0 when nothing is left of it, else 1.
setlocal
set "here=%~dp0"
set "playersRegistrar=HKCR\CLSID\{5569E7F5-424B-4B93-89CA-79D17924689A}"
set "plugin=HKCR\CLSID\{5C1E8A47-93D2-4B06-B7F1-2A6D90CE3F18}"
set "rightsTest=HKLM\Software\Classes\Clarivex.RightsTest"
set failed=0

rem Only an administrator may enter classes for the whole machine.
reg add "%rightsTest%" /f >nul 2>&1
if errorlevel 1 (
    echo Clarivex needs administrator rights to be removed.
    echo Right-click uninstall.cmd and choose "Run as administrator".
    exit /b 1
)
reg delete "%rightsTest%" /f >nul 2>&1

set "system=%windir%\System32"
if defined PROCESSOR_ARCHITEW6432 set "system=%windir%\Sysnative"
if exist "%windir%\SysWOW64\regsvr32.exe" (
    call :Unregister x64 64 "%system%\regsvr32.exe"
    call :Unregister x86 32 "%windir%\SysWOW64\regsvr32.exe"
) else (
    call :Unregister x86 32 "%system%\regsvr32.exe"
)

if %failed%==1 exit /b 1
echo Clarivex is removed. This folder can be deleted.
exit /b 0

:Unregister
reg query "%plugin%" /reg:%2 >nul 2>&1
if errorlevel 1 exit /b 0
reg query "%playersRegistrar%" /reg:%2 >nul 2>&1
if errorlevel 1 (
    echo The %2-bit player's plug-in registrar is missing, so %1\WMP_CVX.dll cannot be unregistered.
    echo Turn Windows Media Player on under "Turn Windows features on or off", then run uninstall.cmd again.
    set failed=1
    exit /b 1
)
%3 /s /u "%here%%1\WMP_CVX.dll"
if errorlevel 1 (
    echo %1\WMP_CVX.dll could not be unregistered for the %2-bit player: regsvr32 ended with code %errorlevel%.
    set failed=1
    exit /b 1
)
echo Removed from the %2-bit player.
exit /b 0
