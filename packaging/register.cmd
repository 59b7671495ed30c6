@echo off
rem Registers the add-in for this computer, from the folder that this file lies in. Run it as administrator.
rem After an error it waits for a key, so that the message can be read; a script adds /quiet.
setlocal
rem The regsvr32 of the add-in's number of bits, wherever this Windows keeps it.
set "regsvr=%SystemRoot%\System32\regsvr32.exe"
if exist "%SystemRoot%\@OTHER_SYSTEM@\regsvr32.exe" set "regsvr=%SystemRoot%\@OTHER_SYSTEM@\regsvr32.exe"
"%regsvr%" /s "%~dp0HZOCalibrateDevice.dll"
rem A program that crashes ends with a negative number.
if not %errorlevel%==0 goto failed
echo "Zolvane Setup" is registered.
exit /b 0
:failed
echo HZOCalibrateDevice.dll could not be registered, and nothing was changed. Run this file as administrator.
if /i not "%~1"=="/quiet" pause
exit /b 1
