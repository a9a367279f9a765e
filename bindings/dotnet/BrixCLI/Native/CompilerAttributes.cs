#if !NET
namespace System.Runtime.CompilerServices;

// Known to the compiler by its name: a parameter that gets the text of another parameter's argument.
[AttributeUsage(AttributeTargets.Parameter)]
internal sealed class CallerArgumentExpressionAttribute : Attribute
{
    public CallerArgumentExpressionAttribute(string parameterName) => ParameterName = parameterName;

    public string ParameterName { get; }
}
#endif
