// SPDX-License-Identifier: MIT
// Example HOST PORT FILE LOCAL [SECONDS]: lists the folder of a remote file and downloads the file. Shows how far that
// is, and cancels it when nothing has come for so long (10 s). Ctrl+C cancels it, too.
//
//   mcs -unsafe -out:Example.exe Example.cs QXClient.cs && mono Example.exe ...
using System;
using System.Diagnostics;
using System.Globalization;

// Shows the progress of a download, and gives it up when it rests for too long.
class Display {
    public Display(double patience) { m_patience = TimeSpan.FromSeconds(patience); }

    public Stopwatch GaveUp { get; private set; }

    public bool Poll(QX.Progress progress) {
        if (progress.Transferred != m_transferred) {
            m_transferred = progress.Transferred;
            m_rest.Restart();
            Console.Write("\r{0,3} %  {1} of {2}", 100 * m_transferred / progress.Total, m_transferred, progress.Total);
        }
        if (m_rest.Elapsed < m_patience) return false;
        GaveUp = Stopwatch.StartNew();
        return true;
    }

    readonly TimeSpan m_patience;
    readonly Stopwatch m_rest = Stopwatch.StartNew();
    ulong m_transferred;
}

static class Example {
    static int Main(string[] arguments) {
        if (arguments.Length < 4) {
            Console.Error.WriteLine("usage: Example HOST PORT FILE LOCAL [SECONDS]");
            return 2;
        }
        double patience = arguments.Length > 4 ? double.Parse(arguments[4], CultureInfo.InvariantCulture) : 10;
        using (var client = new QX.Client()) {
            Console.CancelKeyPress += (sender, e) => {
                client.Cancel();
                e.Cancel = true;
            };
            try {
                client.SetLogin(arguments[0], port: uint.Parse(arguments[1]));
                List(client, arguments[2].Substring(0, arguments[2].LastIndexOf('/') + 1));
                return Download(client, arguments[2], arguments[3], patience);
            } catch (QX.ClientException error) {
                Console.Error.WriteLine("\n" + error.Message);
                return 1;
            }
        }
    }

    static void List(QX.Client client, string folder) {
        foreach (QX.Entry entry in client.List(folder)) {
            Console.WriteLine("{0,12}  {1}", entry.IsDirectory ? "folder" : entry.Size.ToString(), entry.Name);
        }
    }

    static int Download(QX.Client client, string remote, string local, double patience) {
        var display = new Display(patience);
        client.Poll = display.Poll;
        try {
            client.Download(remote, local);
        } catch (QX.CancelledException) when (display.GaveUp != null) {
            Console.WriteLine("\nnothing came any more: cancelled within {0} ms", display.GaveUp.ElapsedMilliseconds);
            return 1;
        }
        Console.WriteLine("\ndone");
        return 0;
    }
}
