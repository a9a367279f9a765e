public static class Start
{
    public static int Main() => Program.Main();
}
