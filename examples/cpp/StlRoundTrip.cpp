// Reads an STL file, merges equal vertices, and writes the triangles in the other of the two STL formats.
//
//   StlRoundTrip house.stl house-ascii.stl ascii
#include <brix.h>

#include <exception>
#include <iostream>
#include <string>

namespace {

void Convert(const char* input, const char* output, bool toAscii)
{
    const brix::TriangleMesh mesh(brix::LoadTrianglesFromSTL(input, false));
    std::cout << mesh.IndexedTrianglesRef().size() << " triangles on " << mesh.VerticesRef().size() << " vertices\n";

    if (toAscii)
        brix::SaveTrianglesToAsciiSTL(output, mesh.ExpandedTriangles(), false); // six digits per number
    else
        brix::SaveTrianglesToBinarySTL(output, mesh.ExpandedTriangles(), false); // 32-bit floats

    const bool isComplete = brix::LoadTrianglesFromSTL(output, false).size() == mesh.IndexedTrianglesRef().size();
    std::cout << output << (isComplete ? " holds all of them\n" : " is incomplete\n");
}

} // namespace

int main(int argc, char** argv)
{
    const std::string format = argc == 4 ? argv[3] : "";
    if (format != "ascii" && format != "binary") {
        std::cerr << "usage: StlRoundTrip IN.stl OUT.stl ascii|binary\n";
        return 2;
    }
    try {
        Convert(argv[1], argv[2], format == "ascii");
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
