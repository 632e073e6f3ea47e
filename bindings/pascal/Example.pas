// SPDX-License-Identifier: MIT
// Example HOST PORT FILE LOCAL [SECONDS]: lists the folder of a remote file and downloads the file. Shows how far that
// is, and cancels it when nothing has come for so long (10 s).
//
//   fpc Example.pas && ./Example ...
program Example;

{$IFDEF FPC} {$MODE DELPHI} {$ENDIF}
{$APPTYPE CONSOLE}

uses
  {$IFDEF UNIX} cthreads, cwstring, {$ELSE} Windows, {$ENDIF} SysUtils, QXClient;

const
  LibraryName = {$IFDEF MSWINDOWS} 'ZRM_QXKT32x64.dll' {$ELSE} 'libZRM_QXKT32x64.so.1' {$ENDIF};

type
  // Shows the progress of a download, and gives it up when it rests for too long.
  TDisplay = class
  private
    FPatience: UInt64;
    FTransferred: UInt64;
    FChanged: UInt64;
    FGaveUp: UInt64;
  public
    constructor Create(Patience: Double);
    procedure Poll(Sender: TObject; const Position: TQXPosition; var Cancel: Boolean);
    property GaveUp: UInt64 read FGaveUp;
  end;

constructor TDisplay.Create(Patience: Double);
begin
  FPatience := Round(Patience * 1000);
  FChanged := GetTickCount64;
end;

procedure TDisplay.Poll(Sender: TObject; const Position: TQXPosition; var Cancel: Boolean);
begin
  if Position.Transferred <> FTransferred then
  begin
    FTransferred := Position.Transferred;
    FChanged := GetTickCount64;
    Write(#13, 100 * FTransferred div Position.Total: 3, ' %  ', FTransferred, ' of ', Position.Total);
    Flush(Output);
  end;
  Cancel := GetTickCount64 - FChanged >= FPatience;
  if Cancel then FGaveUp := GetTickCount64;
end;

procedure List(Client: TQXClient; const Folder: UnicodeString);
var
  Entry: TQXEntry;
begin
  for Entry in Client.List(Folder) do
    if Entry.IsDirectory then
      Writeln('folder': 12, '  ', Entry.Name)
    else
      Writeln(Entry.Size: 12, '  ', Entry.Name);
end;

procedure Download(Client: TQXClient; const Remote, Local: UnicodeString; Patience: Double);
var
  Display: TDisplay;
begin
  Display := TDisplay.Create(Patience);
  try
    Client.OnPoll := Display.Poll;
    try
      Client.Download(Remote, Local);
      Writeln(#10'done');
    except
      on EQXCancelled do
      begin
        Writeln(#10'nothing came any more: cancelled within ', GetTickCount64 - Display.GaveUp, ' ms');
        ExitCode := 1;
      end;
    end;
  finally
    Client.OnPoll := nil;
    Display.Free;
  end;
end;

procedure Run(Client: TQXClient);
var
  Remote: UnicodeString;
  Patience: Double;
  Point: TFormatSettings;
begin
  Point := FormatSettings;
  Point.DecimalSeparator := '.';
  Patience := StrToFloatDef(ParamStr(5), 10, Point);
  Remote := UnicodeString(ParamStr(3));
  Client.SetLogin(UnicodeString(ParamStr(1)), 'anonymous', 'anonymous@', StrToInt(ParamStr(2)));
  List(Client, Copy(Remote, 1, LastDelimiter('/', string(Remote))));
  Download(Client, Remote, UnicodeString(ParamStr(4)), Patience);
end;

var
  Loaded: TQXLibrary;
  Client: TQXClient;

begin
  if ParamCount < 4 then
  begin
    Writeln(ErrOutput, 'usage: Example HOST PORT FILE LOCAL [SECONDS]');
    Halt(2);
  end;
  Loaded := TQXLibrary.Create(LibraryName);
  Client := TQXClient.Create(Loaded);
  try
    try
      Run(Client);
    except
      on Error: EQXError do
      begin
        Writeln(ErrOutput, Error.Message);
        ExitCode := 1;
      end;
    end;
  finally
    Client.Free;
    Loaded.Free;
  end;
end.
