// SPDX-License-Identifier: MIT
// Checks.exe PORT PORT-OF-BYTES FOLDER: the cases of the binding for C#; tests/bindings/driver.py has the servers.
using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;
using QX;

static unsafe class Probe {
    [DllImport("slot_probe", CallingConvention = CallingConvention.Cdecl)]
    public static extern byte* QXProbeSeen();
    [DllImport("slot_probe", CallingConvention = CallingConvention.Cdecl)]
    public static extern byte* QXProbeExpected();
    [DllImport("slot_probe", CallingConvention = CallingConvention.Cdecl)]
    public static extern byte* QXProbeLayout();
    [DllImport("slot_probe", CallingConvention = CallingConvention.Cdecl)]
    public static extern Raw.QXClientObject* QXProbeClient();
}

static unsafe class Checks {
    const uint STALL = 300000;    // where /pub/stalled rests
    const double SOON_MS = 10000;  // far below the 30 s after which the library gives a silent server up

    static uint port, bytesPort;
    static string folder;

    sealed class MyException : Exception {
        public MyException() : base("mine") {}
    }

    static string Local(string name) { return Path.Combine(folder, name); }

    static void Check(bool good, string why = "") {
        if (!good) throw new Exception("wrong " + why);
    }

    static void Same<T>(T found, T expected) { Check(Equals(found, expected), found + " in place of " + expected); }

    static T Failure<T>(Action call) where T : Exception {
        try {
            call();
        } catch (T error) {
            return error;
        }
        throw new Exception("no " + typeof(T).Name);
    }

    static Client Make() {
        var client = new Client();
        client.SetLogin("127.0.0.1", "me", "secret", port);
        return client;
    }

    static void With(Action<Client> use) {
        using (Client client = Make()) use(client);
    }

    static string Names(List<Entry> entries) {
        return string.Join(" ", entries.Select(entry => entry.Name).OrderBy(name => name, StringComparer.Ordinal));
    }

    static void Layout() {
        var lines = new StringBuilder();
        SlotCalls.Layout((name, number) => lines.Append(name + " " + number + "\n"));
        Same(lines.ToString(), Texts.ToText(Probe.QXProbeLayout()));
    }

    static void Slots() {
        var lines = new StringBuilder();
        SlotCalls.All(Probe.QXProbeClient(), result => lines.AppendFormat("{0}-> {1:x}\n",
                                                                          Texts.ToText(Probe.QXProbeSeen()), result));
        Same(lines.ToString(), Texts.ToText(Probe.QXProbeExpected()));
    }

    static void Lists(Client client) {
        List<Entry> entries = client.List("/pub");
        Same(Names(entries), "a.txt empty large stalled sub");
        Entry text = entries.Single(entry => entry.Name == "a.txt");
        Same(text.Modified, (DateTime?)new DateTime(2024, 2, 29, 12, 34, 56));
        Same(entries.Single(entry => entry.Name == "large").Size, 700000L);
        Check(entries.Single(entry => entry.Name == "sub").IsDirectory && !text.IsDirectory);
        Same(Names(client.List("/pub", "a*")), "a.txt");
        Same(client.List("/none").Count, 0);
    }

    static void TellsEntries(Client client) {
        var entries = new List<Entry>();
        client.Listed = entries.Add;
        client.List("/pub");
        Same(Names(entries), "a.txt empty large stalled");
    }

    static void DownloadsWithProgress(Client client) {
        var first = new Progress();
        client.Poll = progress => {
            if (first.Transferred == 0 && progress.Transferred > 0) {
                Console.WriteLine("moving");
                first = progress;
            }
            return false;
        };
        client.Download("/pub/large", Local("large"));
        Same(new FileInfo(Local("large")).Length, 700000L);
        Check(first.IsKnown);
        Same(first.Total, 700000UL);
    }

    static void Uploads(Client client) {
        client.Upload(Local("large"), "/pub/sub/mine");
        Same(client.Size("/pub/sub/mine"), 700000U);
    }

    static void BrokenUpload(Client client) {
        Check(Failure<ClientException>(() => client.Upload(Local("large"), "/pub/full")).Report.Text != "");
    }

    static void TellsNoFromNotKnown(Client client) {
        Check(client.FileExists("/pub/a.txt") && !client.FileExists("/pub/none"));
        Check(client.DirectoryExists("/pub/sub") && !client.DirectoryExists("/pub/none"));
        Same(client.Size("/pub/empty"), 0U);
        Failure<ClientException>(() => client.Size("/pub/none"));
        Same(Failure<ClientException>(() => client.FileExists("/pub/a\n")).Report.Number, 87U);
    }

    static string ReadText(Client client, string path) { return Encoding.ASCII.GetString(client.Read(path)); }

    static void MovesContent(Client client) {
        client.Write("/pub/sub/bindings.txt", Encoding.ASCII.GetBytes("first"));
        client.Append("/pub/sub/bindings.txt", Encoding.ASCII.GetBytes(", second"));
        Same(ReadText(client, "/pub/sub/bindings.txt"), "first, second");
        Same(client.Read("/pub/empty").Length, 0);
        Failure<ClientException>(() => client.Read("/pub/none"));
        Failure<ClientException>(() => client.Write("/pub/sub/bindings.txt", new byte[0]));
    }

    static void ChangesTheServer(Client client) {
        client.CreateDirectory("/pub/new/inner");
        Same(client.CreateNewDirectory("/pub", "new"), "/pub/new (1)");
        client.Copy("/pub/sub/bindings.txt", "/pub/new/b");
        client.Move("/pub/new/b", "/pub/new/c");
        client.Rename("/pub/new/c", "/pub/new/d");
        uint files, folders;
        client.Count("/pub/new", out files, out folders);
        Check(files == 1 && folders == 1);
        client.Remove("/pub/new/d");
        client.RemoveDirectory("/pub/new/inner");
        Same(client.List("/pub/new").Count, 0);
    }

    static void KeepsTheRecord(Client client) {
        var error = Failure<ClientException>(() => client.Connect("127.0.0.1", "me", "wrong", port));
        Same(error.Report.Number, (uint)Raw.QX_ERROR_INCORRECT_PASSWORD);
        Check(error.Report.Text.Contains("password") && error.Message == error.Report.Text, error.Message);
        Same(error.Report.Message, "TQXIP::FTPConnect - OUT: Failed!");
        client.Connect("127.0.0.1", "me", "secret", port);
        Check(!client.Report.IsSet);
        client.Disconnect();
    }

    static void KeepsTheReportOfASuccess(Client client) {
        string errors = "";
        client.Error = (number, text) => errors += number + " " + text;
        client.Retries = 1;
        Same(ReadText(client, "/pub/a.txt"), "hello");
        Same(client.Report.Number, (uint)Raw.QX_ERROR_REFUSED);
        Check(errors.StartsWith("12003") && errors.Contains("451"), errors);
    }

    static void TellsTheProtocol(Client client) {
        var lines = new List<string>();
        string events = "";
        client.Line = lines.Add;
        client.Connected = () => events += "1";
        client.Disconnected = () => events += "0";
        client.Connect("127.0.0.1", "me", "secret", port);
        Check(client.Object->m_bConnected != 0, "the library's own part is done as well");
        client.Disconnect();
        Check(lines.Contains("> PASS ****"), string.Join("\n", lines));
        Check(events.StartsWith("1") && events.EndsWith("0"), events);
    }

    // Prints the time from the moment that `ask`, called when the download rests, has had its way, to the end.
    static void Interrupt<T>(Client client, Func<bool> ask) where T : Exception {
        Stopwatch asked = null;
        client.Poll = progress => {
            if (progress.Transferred < STALL / 4096 * 4096 || asked != null) return false;
            asked = Stopwatch.StartNew();
            return ask();
        };
        Failure<T>(() => client.Download("/pub/stalled", Local("stalled")));
        double took = asked.Elapsed.TotalMilliseconds;
        Console.WriteLine(FormattableString.Invariant($"measured {took:F1} ms"));
        Check(took < SOON_MS, took + " ms");
        client.Poll = null;
        Same(client.Size("/pub/large"), 700000U);
    }

    static void CancelsAStall(Client client) { Interrupt<CancelledException>(client, () => true); }

    static void CancelsFromAThread(Client client) {
        var thread = new Thread(client.Cancel);
        Interrupt<CancelledException>(client, () => {
            thread.Start();
            return false;
        });
        thread.Join();
    }

    static void CancelsByAToken(Client client) {
        var source = new CancellationTokenSource();
        client.Cancellation = source.Token;
        client.Poll = progress => {
            if (progress.Transferred > 0) source.Cancel();
            return false;
        };
        Failure<CancelledException>(() => client.Download("/pub/stalled", Local("stalled")));
    }

    static void RaisesFromPoll(Client client) {
        Interrupt<MyException>(client, () => { throw new MyException(); });
    }

    static void RaisesFromAWorker(Client client) {
        bool isOther = false;
        Thread mine = Thread.CurrentThread;
        client.Line = text => {
            isOther |= Thread.CurrentThread != mine;
            if (text.Contains("RETR")) throw new MyException();
        };
        Failure<MyException>(() => client.Download("/pub/stalled", Local("stalled")));
        Check(isOther, "no other thread");
    }

    // The runtime stops all threads that it knows, those of the library among them, and waited for ever: they blocked
    // the signal that it uses.
    static void CollectsGarbage(Client client) {
        client.Line = text => {};
        client.Poll = progress => {
            GC.Collect();
            return progress.Transferred >= STALL / 4096 * 4096;
        };
        Failure<CancelledException>(() => client.Download("/pub/stalled", Local("stalled")));
    }

    static void KeepsNames(Client client) {
        Same(Names(client.List("/names")), "gr\u00fcn \u00fc \u65e5\u672c");
        Same(ReadText(client, "/names/gr\u00fcn") + ReadText(client, "/names/\u00fc \u65e5\u672c"), "texttext");
        client.Download("/names/gr\u00fcn", Local("\u00fc"));
        Same(File.ReadAllText(Local("\u00fc")), "text");
    }

    static void KeepsBytes(Client client) {
        client.SetLogin("127.0.0.1", port: bytesPort);
        Same(Names(client.List("/names")), "gr\udcfcn");
        Same(ReadText(client, "/names/gr\udcfcn"), "text");
        byte[] smile = Encoding.UTF8.GetBytes("/\U0001F600/\u00fc");
        Check(Texts.ToBytes(Texts.ToText(smile)).SequenceEqual(smile));
    }

    static void RefusesNul(Client client) {
        Failure<ArgumentException>(() => client.Remove("/pub/large\0.txt"));
        Check(client.FileExists("/pub/large"));
    }

    static void EndsInAHook(Client client) {
        client.Poll = progress => {
            client.Dispose();
            return false;
        };
        Failure<ClientException>(() => client.Download("/pub/stalled", Local("stalled")));
        Failure<ObjectDisposedException>(() => client.Size("/pub/large"));
    }

    static void EndsOnAnotherThread(Client client) {
        var waits = new ManualResetEvent(false);
        client.Line = line => {
            if (line == "> USER nobody") waits.Set();
        };
        var thread = new Thread(() => {
            waits.WaitOne();
            client.Dispose();
        });
        thread.Start();
        Stopwatch began = Stopwatch.StartNew();
        Failure<ClientException>(() => client.Connect("127.0.0.1", "nobody", "", port));
        Check(began.Elapsed.TotalMilliseconds < SOON_MS);
        thread.Join();
    }

    static void LeavesNothing() {
        Raw.DllAddRef();
        Same(Raw.DllRelease(), 0U);
    }

    static bool Run(string name, Action check) {
        try {
            check();
            Console.WriteLine("ok " + name);
            return true;
        } catch (Exception error) {
            Console.WriteLine("failed " + name + ": " + error.GetType().Name + " " + error.Message.Replace("\n", " "));
            return false;
        }
    }

    static bool Run(string name, Action<Client> check) { return Run(name, () => With(check)); }

    static int Main(string[] arguments) {
        port = uint.Parse(arguments[0]);
        bytesPort = uint.Parse(arguments[1]);
        folder = arguments[2];
        bool good = Run("layout", Layout);
        good &= Run("slots", Slots);
        good &= Run("lists", Lists);
        good &= Run("tells_entries", TellsEntries);
        good &= Run("downloads_with_progress", DownloadsWithProgress);
        good &= Run("uploads", Uploads);
        good &= Run("broken_upload", BrokenUpload);
        good &= Run("tells_no_from_not_known", TellsNoFromNotKnown);
        good &= Run("moves_content", MovesContent);
        good &= Run("changes_the_server", ChangesTheServer);
        good &= Run("keeps_the_record", KeepsTheRecord);
        good &= Run("keeps_the_report_of_a_success", KeepsTheReportOfASuccess);
        good &= Run("tells_the_protocol", TellsTheProtocol);
        good &= Run("cancels_a_stall", CancelsAStall);
        good &= Run("cancels_from_a_thread", CancelsFromAThread);
        good &= Run("cancels_by_a_token", CancelsByAToken);
        good &= Run("raises_from_poll", RaisesFromPoll);
        good &= Run("raises_from_a_worker", RaisesFromAWorker);
        good &= Run("collects_garbage", CollectsGarbage);
        good &= Run("keeps_names", KeepsNames);
        good &= Run("keeps_bytes", KeepsBytes);
        good &= Run("refuses_nul", RefusesNul);
        good &= Run("ends_in_a_hook", EndsInAHook);
        good &= Run("ends_on_another_thread", EndsOnAnotherThread);
        good &= Run("leaves_nothing", LeavesNothing);
        return good ? 0 : 1;
    }
}
