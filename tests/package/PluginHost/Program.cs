// A host that knows nothing of BrixCLI, as a desktop program does: it loads Consumer.dll from each folder that it is given, with
// whatever stands beside it, into a context of its own, and runs it. Then it lists the native libraries that the process holds.
using System;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.Loader;

int result = 0;
foreach (string folder in args.Select(Path.GetFullPath)) {
    var context = new AssemblyLoadContext(folder);
    context.Resolving += (_, name) => {
        string path = Path.Combine(folder, name.Name + ".dll");
        return File.Exists(path) ? context.LoadFromAssemblyPath(path) : null;
    };
    MethodInfo entry = context.LoadFromAssemblyPath(Path.Combine(folder, "Consumer.dll")).EntryPoint!;
    result |= (int)entry.Invoke(null, null)!;
}
if (File.Exists("/proc/self/maps")) {
    foreach (string library in File.ReadLines("/proc/self/maps").Where(line => line.Contains("brix_c."))
        .Select(line => line[line.IndexOf('/')..]).Distinct().Order()) Console.WriteLine("holds " + library);
}
return result;
