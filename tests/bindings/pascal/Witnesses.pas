// SPDX-License-Identifier: MIT
// What the cases of checks.pas have in common: comparing, and events of a client that note what they have seen.
unit Witnesses;

{$MODE DELPHI}

interface

uses
  SysUtils, Classes, QXClient;

const
  Stall = 300000;  // where /pub/stalled rests

type
  EMine = class(Exception);

  // What events of a client have seen, and what they do.
  TWitness = class
    Client: TQXClient;
    Names, Lines, Errors, Events: UnicodeString;
    First: TQXPosition;
    Asked: UInt64;
    IsOtherThread: Boolean;
    Ask: procedure(Witness: TWitness; var Cancel: Boolean);
    Thread: TThread;
    procedure Progress(Sender: TObject; const Position: TQXPosition; var Cancel: Boolean);
    procedure Stalled(Sender: TObject; const Position: TQXPosition; var Cancel: Boolean);
    procedure Entry(Sender: TObject; const Entry: TQXEntry);
    procedure Line(Sender: TObject; const Line: UnicodeString);
    procedure RaisingLine(Sender: TObject; const Line: UnicodeString);
    procedure Error(Sender: TObject; Number: Cardinal; const Text: UnicodeString);
    procedure Connected(Sender: TObject);
    procedure Disconnected(Sender: TObject);
  end;

  TCanceller = class(TThread)
    Client: TQXClient;
    procedure Execute; override;
  end;

procedure Check(Good: Boolean; const Why: UnicodeString = '');
procedure Same(const Found, Expected: UnicodeString); overload;
procedure Same(Found, Expected: Int64); overload;

// What a witness does when it is asked.
procedure SayCancel(Witness: TWitness; var Cancel: Boolean);
procedure SayCancelInAThread(Witness: TWitness; var Cancel: Boolean);
procedure RaiseMine(Witness: TWitness; var Cancel: Boolean);

implementation

procedure Check(Good: Boolean; const Why: UnicodeString);
begin
  if not Good then raise Exception.Create('wrong ' + UTF8Encode(Why));
end;

procedure Same(const Found, Expected: UnicodeString); overload;
begin
  Check(Found = Expected, Found + ' in place of ' + Expected);
end;

procedure Same(Found, Expected: Int64); overload;
begin
  Same(UnicodeString(IntToStr(Found)), UnicodeString(IntToStr(Expected)));
end;

procedure TCanceller.Execute;
begin
  Client.Cancel;
end;

procedure TWitness.Progress(Sender: TObject; const Position: TQXPosition; var Cancel: Boolean);
begin
  if (First.Transferred > 0) or (Position.Transferred = 0) then Exit;
  First := Position;
  Writeln('moving');
  Flush(Output);
end;

procedure TWitness.Stalled(Sender: TObject; const Position: TQXPosition; var Cancel: Boolean);
begin
  if (Position.Transferred < Stall div 4096 * 4096) or (Asked <> 0) then Exit;
  Asked := GetTickCount64;
  Ask(Self, Cancel);
end;

procedure TWitness.Entry(Sender: TObject; const Entry: TQXEntry);
begin
  Names := Names + Entry.Name + ' ';
end;

procedure TWitness.Line(Sender: TObject; const Line: UnicodeString);
begin
  Lines := Lines + Line + #10;
end;

procedure TWitness.RaisingLine(Sender: TObject; const Line: UnicodeString);
begin
  IsOtherThread := IsOtherThread or (GetCurrentThreadId <> MainThreadID);
  if Pos('RETR', Line) > 0 then raise EMine.Create('mine');
end;

procedure TWitness.Error(Sender: TObject; Number: Cardinal; const Text: UnicodeString);
begin
  Errors := Errors + UnicodeString(IntToStr(Number)) + ' ' + Text;
end;

procedure TWitness.Connected(Sender: TObject);
begin
  Events := Events + '1';
end;

procedure TWitness.Disconnected(Sender: TObject);
begin
  Events := Events + '0';
end;

procedure SayCancel(Witness: TWitness; var Cancel: Boolean);
begin
  Cancel := True;
end;

procedure SayCancelInAThread(Witness: TWitness; var Cancel: Boolean);
begin
  Witness.Thread.Start;
end;

procedure RaiseMine(Witness: TWitness; var Cancel: Boolean);
begin
  raise EMine.Create('mine');
end;

end.
