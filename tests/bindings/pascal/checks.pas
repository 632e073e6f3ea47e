// SPDX-License-Identifier: MIT
// checks PROBE LIBRARY PORT PORT-OF-BYTES FOLDER: the cases of the binding for Pascal; tests/bindings/driver.py has the
// servers.
program checks;

{$MODE DELPHI}
{$CODEPAGE UTF8}
{$APPTYPE CONSOLE}

uses
  {$IFDEF UNIX} cthreads, cwstring, dynlibs, {$ELSE} Windows, {$ENDIF} SysUtils, QXClient, Witnesses;

const
  SoonMs = 10000;  // far below the 30 s after which the library gives a silent server up

type
  TCase = procedure(Client: TQXClient; Witness: TWitness);
  TProbeText = function: PAnsiChar; cdecl;
  TProbeClient = function: PQXClientObject; cdecl;

var
  Port, BytesPort: Cardinal;
  Folder: UnicodeString;
  Loaded: TQXLibrary;
  Probe: {$IFDEF MSWINDOWS} HMODULE {$ELSE} TLibHandle {$ENDIF};
  Seen: AnsiString;  // what the stand-in was given, or the layout
  SeenText: TProbeText;
  AllGood: Boolean = True;

type
  TTwoTexts = procedure(const One, Other: UnicodeString) of object;

// What a call that has to fail reports.
function FailureOf(Call: TTwoTexts; const One, Other: UnicodeString): TQXReport;
begin
  try
    Call(One, Other);
  except
    on Failed: EQXError do Exit(Failed.Report);
  end;
  raise Exception.Create('no failure');
end;

procedure FailsToRead(Client: TQXClient; const Path: UnicodeString);
begin
  try
    Client.Read(Path);
  except
    on EQXError do Exit;
  end;
  raise Exception.Create('no failure');
end;

function TextOf(const Bytes: TBytes): UnicodeString;
begin
  Result := UnicodeString(StringOf(Bytes));
end;

function Local(const Name: UnicodeString): UnicodeString;
begin
  Result := Folder + PathDelim + Name;
end;

function NamesOf(const Entries: TQXEntries): UnicodeString;
var
  Item: TQXEntry;
begin
  Result := '';
  for Item in Entries do Result := Result + Item.Name + ' ';
end;

function Named(const Entries: TQXEntries; const Name: UnicodeString): TQXEntry;
begin
  for Result in Entries do
    if Result.Name = Name then Exit;
  raise Exception.Create('no ' + UTF8Encode(Name));
end;

procedure Noted(Answer: NativeUInt);
begin
  Seen := Seen + AnsiString(SeenText()) + '-> ' + LowerCase(IntToHex(Int64(Answer), 1)) + #10;
end;

procedure Tell(const Name: AnsiString; Number: NativeUInt);
begin
  Seen := Seen + Name + ' ' + IntToStr(Number) + #10;
end;

{$I slotcalls.inc}

procedure CompareWith(const ExportName: AnsiString);
var
  Expected: TProbeText;
begin
  Expected := GetProcAddress(Probe, PAnsiChar(ExportName));
  Same(UnicodeString(Seen), UnicodeString(AnsiString(Expected())));
end;

procedure CheckLayout(Client: TQXClient; Witness: TWitness);
begin
  Seen := '';
  TellLayout;
  CompareWith('QXProbeLayout');
end;

procedure CheckSlots(Client: TQXClient; Witness: TWitness);
var
  StandIn: TProbeClient;
begin
  Seen := '';
  SeenText := GetProcAddress(Probe, 'QXProbeSeen');
  StandIn := GetProcAddress(Probe, 'QXProbeClient');
  CallAll(StandIn());
  CompareWith('QXProbeExpected');
end;

procedure Lists(Client: TQXClient; Witness: TWitness);
var
  Entries: TQXEntries;
begin
  Entries := Client.List('/pub');
  Same(Length(Entries), 5);
  Same(Named(Entries, 'large').Size, 700000);
  Check(Named(Entries, 'sub').IsDirectory and not Named(Entries, 'large').IsDirectory);
  Same(UnicodeString(FormatDateTime('yyyymmddhhnnss', Named(Entries, 'a.txt').Modified)), '20240229123456');
  Same(NamesOf(Client.List('/pub', 'a*')), 'a.txt ');
  Same(Length(Client.List('/none')), 0);
end;

procedure TellsEntries(Client: TQXClient; Witness: TWitness);
begin
  Client.OnEntry := Witness.Entry;
  Client.List('/pub', '*e*');
  Check((Pos('empty ', Witness.Names) > 0) and (Pos('large ', Witness.Names) > 0), Witness.Names);
  Same(Length(Witness.Names), Length('empty large stalled '));
end;

procedure DownloadsWithProgress(Client: TQXClient; Witness: TWitness);
begin
  Client.OnPoll := Witness.Progress;
  Client.Download('/pub/large', Local('large'));
  Check(Witness.First.IsKnown);
  Same(Witness.First.Total, 700000);
end;

procedure Uploads(Client: TQXClient; Witness: TWitness);
begin
  Client.Upload(Local('large'), '/pub/sub/mine');
  Same(Client.Size('/pub/sub/mine'), 700000);
end;

procedure BrokenUpload(Client: TQXClient; Witness: TWitness);
begin
  Check(FailureOf(Client.Upload, Local('large'), '/pub/full').Text <> '');
end;

procedure TellsNoFromNotKnown(Client: TQXClient; Witness: TWitness);
begin
  Check(Client.FileExists('/pub/a.txt') and not Client.FileExists('/pub/none'));
  Check(Client.DirectoryExists('/pub/sub') and not Client.DirectoryExists('/pub/none'));
  Same(Client.Size('/pub/empty'), 0);
  try
    Client.FileExists('/pub/a'#10);
    Check(False, 'no failure');
  except
    on Failed: EQXError do Same(Failed.Report.Number, 87);
  end;
end;

procedure MovesContent(Client: TQXClient; Witness: TWitness);
begin
  Client.Write('/pub/sub/bindings.txt', BytesOf('first'));
  Client.Append('/pub/sub/bindings.txt', BytesOf(', second'));
  Same(TextOf(Client.Read('/pub/sub/bindings.txt')), 'first, second');
  Same(Length(Client.Read('/pub/empty')), 0);
  FailsToRead(Client, '/pub/none');
end;

procedure ChangesTheServer(Client: TQXClient; Witness: TWitness);
var
  Files, Folders: Cardinal;
begin
  Client.CreateDirectory('/pub/new/inner');
  Same(Client.CreateNewDirectory('/pub', 'new'), '/pub/new (1)');
  Client.Copy('/pub/sub/bindings.txt', '/pub/new/b');
  Client.Move('/pub/new/b', '/pub/new/c');
  Client.Rename('/pub/new/c', '/pub/new/d');
  Client.Count('/pub/new', Files, Folders);
  Check((Files = 1) and (Folders = 1));
  Client.Remove('/pub/new/d');
  Client.RemoveDirectory('/pub/new/inner');
  Same(Length(Client.List('/pub/new')), 0);
end;

procedure KeepsTheRecord(Client: TQXClient; Witness: TWitness);
begin
  try
    Client.Connect('127.0.0.1', 'me', 'wrong', Port);
    Check(False, 'no failure');
  except
    on Failed: EQXError do
    begin
      Same(Failed.Report.Number, QX_ERROR_INCORRECT_PASSWORD);
      Check(Pos('password', Failed.Report.Text) > 0, Failed.Report.Text);
      Same(UnicodeString(Failed.Message), Failed.Report.Text);
      Same(Failed.Report.Message, 'TQXIP::FTPConnect - OUT: Failed!');
    end;
  end;
  Client.Connect('127.0.0.1', 'me', 'secret', Port);
  Check(not Client.Report.IsSet);
  Client.Disconnect;
end;

procedure KeepsTheReportOfASuccess(Client: TQXClient; Witness: TWitness);
begin
  Client.OnError := Witness.Error;
  Client.Retries := 1;
  Same(TextOf(Client.Read('/pub/a.txt')), 'hello');
  Same(Client.Report.Number, QX_ERROR_REFUSED);
  Check((Pos('12003', Witness.Errors) = 1) and (Pos('451', Witness.Errors) > 0), Witness.Errors);
end;

procedure TellsTheProtocol(Client: TQXClient; Witness: TWitness);
begin
  Client.OnLine := Witness.Line;
  Client.OnConnected := Witness.Connected;
  Client.OnDisconnected := Witness.Disconnected;
  Client.Connect('127.0.0.1', 'me', 'secret', Port);
  Check(Client.Handle^.m_bConnected <> 0, 'the library''s own part is done as well');
  Client.Disconnect;
  Check(Pos('> PASS ****'#10, Witness.Lines) > 0, Witness.Lines);
  Check((Witness.Events[1] = '1') and (Witness.Events[Length(Witness.Events)] = '0'), Witness.Events);
end;

// Prints the time from the moment that the event is asked, when the download rests, to its end.
procedure Interrupt(Client: TQXClient; Witness: TWitness; Expected: ExceptClass);
var
  Took: UInt64;
begin
  Client.OnPoll := Witness.Stalled;
  try
    Client.Download('/pub/stalled', Local('stalled'));
    Check(False, 'no failure');
  except
    on Failed: Exception do Check(Failed.ClassType = Expected, UnicodeString(Failed.Message));
  end;
  Took := GetTickCount64 - Witness.Asked;
  Writeln('measured ', Took, ' ms');
  Check(Took < SoonMs);
  Client.OnPoll := nil;
  Same(Client.Size('/pub/large'), 700000);
end;

procedure CancelsAStall(Client: TQXClient; Witness: TWitness);
begin
  Witness.Ask := SayCancel;
  Interrupt(Client, Witness, EQXCancelled);
  Check(FailureOf(Client.Copy, '/none', '/pub/other').Number <> 0);
end;

procedure CancelsFromAThread(Client: TQXClient; Witness: TWitness);
begin
  Witness.Thread := TCanceller.Create(True);
  TCanceller(Witness.Thread).Client := Client;
  Witness.Ask := SayCancelInAThread;
  Interrupt(Client, Witness, EQXCancelled);
  Witness.Thread.WaitFor;
  Witness.Thread.Free;
end;

procedure RaisesFromPoll(Client: TQXClient; Witness: TWitness);
begin
  Witness.Ask := RaiseMine;
  Interrupt(Client, Witness, EMine);
end;

procedure RaisesFromAWorker(Client: TQXClient; Witness: TWitness);
begin
  Client.OnLine := Witness.RaisingLine;
  try
    Client.Download('/pub/stalled', Local('stalled'));
    Check(False, 'no failure');
  except
    on Failed: EMine do Check(Witness.IsOtherThread, 'no other thread');
  end;
end;

procedure KeepsNames(Client: TQXClient; Witness: TWitness);
var
  Item: TQXEntry;
begin
  for Item in Client.List('/names') do
  begin
    Check((Item.Name = 'grün') or (Item.Name = 'ü 日本'), Item.Name);
    Same(TextOf(Client.Read('/names/' + Item.Name)), 'text');
    Witness.Names := Witness.Names + 'x';
  end;
  Same(Witness.Names, 'xx');
  Client.Download('/names/grün', Local('ü'));
  Client.Upload(Local('ü'), '/pub/sub/ü');
  Same(TextOf(Client.Read('/pub/sub/ü')), 'text');
end;

procedure KeepsBytes(Client: TQXClient; Witness: TWitness);
const
  Name: UnicodeString = {$IFDEF MSWINDOWS} 'grün' {$ELSE} 'gr'#$DCFC'n' {$ENDIF};
begin
  Client.SetLogin('127.0.0.1', 'any', 'any', BytesPort);
  Same(NamesOf(Client.List('/names')), Name + ' ');
  Same(TextOf(Client.Read('/names/' + Name)), 'text');
  Same(QXText(Pointer(QXBytes('/😀/ü'))), '/😀/ü');
end;

procedure RefusesNul(Client: TQXClient; Witness: TWitness);
begin
  try
    Client.Remove('/pub/large'#0'.txt');
    Check(False, 'no failure');
  except
    on EArgumentException do Check(Client.FileExists('/pub/large'));
  end;
end;

procedure LeavesNothing(Client: TQXClient; Witness: TWitness);
begin
  Same(Loaded.Calls.DllAddRef(), 2);
  Same(Loaded.Calls.DllRelease(), 1);
end;

procedure RunWith(Check: TCase);
var
  Client: TQXClient;
  Witness: TWitness;
begin
  Witness := TWitness.Create;
  Client := TQXClient.Create(Loaded);
  try
    Client.SetLogin('127.0.0.1', 'me', 'secret', Port);
    Check(Client, Witness);
  finally
    Client.Free;
    Witness.Free;
  end;
end;

procedure Run(const Name: AnsiString; Check: TCase);
begin
  try
    RunWith(Check);
    Writeln('ok ', Name);
  except
    on Failed: Exception do
    begin
      Writeln('failed ', Name, ': ', Failed.ClassName, ' ', Failed.Message);
      AllGood := False;
    end;
  end;
  Flush(Output);
end;

begin
  Probe := LoadLibrary(PAnsiChar(AnsiString(ParamStr(1))));
  Loaded := TQXLibrary.Create(UnicodeString(ParamStr(2)));
  Port := StrToInt(ParamStr(3));
  BytesPort := StrToInt(ParamStr(4));
  Folder := UnicodeString(ParamStr(5));
  Run('layout', CheckLayout);
  Run('slots', CheckSlots);
  Run('lists', Lists);
  Run('tells_entries', TellsEntries);
  Run('downloads_with_progress', DownloadsWithProgress);
  Run('uploads', Uploads);
  Run('broken_upload', BrokenUpload);
  Run('tells_no_from_not_known', TellsNoFromNotKnown);
  Run('moves_content', MovesContent);
  Run('changes_the_server', ChangesTheServer);
  Run('keeps_the_record', KeepsTheRecord);
  Run('keeps_the_report_of_a_success', KeepsTheReportOfASuccess);
  Run('tells_the_protocol', TellsTheProtocol);
  Run('cancels_a_stall', CancelsAStall);
  Run('cancels_from_a_thread', CancelsFromAThread);
  Run('raises_from_poll', RaisesFromPoll);
  Run('raises_from_a_worker', RaisesFromAWorker);
  Run('keeps_names', KeepsNames);
  Run('keeps_bytes', KeepsBytes);
  Run('refuses_nul', RefusesNul);
  Run('leaves_nothing', LeavesNothing);
  Loaded.Free;
  ExitCode := Ord(not AllGood);
end.
