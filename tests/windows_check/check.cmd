@echo off
rem Runs all tests and writes report.txt beside this file. Options are those of check.py --help.
setlocal
cd /d "%~dp0"
set python=
for %%p in (py.exe python.exe) do if not defined python where %%p >nul 2>&1 && set python=%%p
if not defined python (
  echo Python 3.11 or later is needed: https://www.python.org/downloads/windows/
  set result=1
) else (
  %python% check.py %*
)
if not defined result set result=%errorlevel%
if "%~1"=="" pause
exit /b %result%
