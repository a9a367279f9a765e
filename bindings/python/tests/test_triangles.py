"""From triangles in arrays of all kinds, and STL files, to models."""
import numpy as np
import pytest
from hypothesis import given, strategies as st

import brix

VERTICES = np.array([[0, 0, 0], [4, 0, 0.5], [0, 4, 1], [1, 1, 4]], dtype=np.float64)
FACES = np.array([[0, 2, 1], [0, 1, 3], [0, 3, 2], [1, 2, 3]])
SOLID = brix.voxelize(VERTICES, FACES, voxel=0.25)


@given(st.sampled_from((np.float64, np.float32, ">f8", np.float16)), st.sampled_from((np.int32, np.int64, np.uint8, ">i2")),
       st.sampled_from("CF"), st.booleans())
def test_meshes_of_any_type_and_order_give_the_same_voxels(real, whole, order, gaps):
    vertices, faces = np.array(VERTICES, dtype=real, order=order), np.array(FACES, dtype=whole, order=order)
    if gaps:
        vertices, faces = np.repeat(vertices, 2, axis=0)[::2], np.repeat(faces, 2, axis=1)[:, ::2]
    assert brix.voxelize(vertices, faces, voxel=0.25) == SOLID
    assert brix.voxelize(vertices[faces], voxel=0.25) == SOLID
    assert brix.voxelize(brix.corners(vertices, faces), frame=brix.Frame(0.25)) == SOLID


def test_contiguous_meshes_are_read_where_they_lie(monkeypatch):
    seen = []
    real = brix.triangles.pointer
    monkeypatch.setattr(brix.triangles, "pointer", lambda memory: seen.append(memory) or real(memory))
    for dtype in (np.float64, np.float32):
        vertices, faces = VERTICES.astype(dtype), FACES.astype(np.int32)
        seen.clear()
        brix.voxelize(vertices, faces, voxel=0.25)
        assert np.shares_memory(seen[0], vertices) and np.shares_memory(seen[1], faces)


def test_a_box_cuts_triangles():
    box = brix.Box(SOLID.frame, (0, 0, 0), (3, 3, 3))
    cut = brix.voxelize(VERTICES, FACES, box=box)
    assert cut.box() == box and np.array_equal(cut.to_numpy(), SOLID.to_numpy(box=box))


def test_meshes_are_indexed_and_have_normals():
    vertices, faces = brix.index(VERTICES[FACES])
    assert len(vertices) == 4 and np.array_equal(vertices[faces], VERTICES[FACES])
    a, b, c = np.moveaxis(VERTICES[FACES], 1, 0)
    expected = np.cross(b - a, c - a)
    assert np.allclose(brix.normals(VERTICES[FACES]), expected / np.linalg.norm(expected, axis=1)[:, None])


@pytest.mark.parametrize("arguments, sentence", [
    ((VERTICES, [[0, 1, 4]]), "index"),
    ((VERTICES, [[0, 1, 2**40]]), "The faces must lie between -2147483648 and 2147483647."),
    ((VERTICES, [[0, 1]]), "shape"),
    ((VERTICES,), "shape"),
])
def test_wrong_meshes_are_value_errors(arguments, sentence):
    with pytest.raises(ValueError, match=sentence):
        brix.voxelize(*arguments, voxel=0.25)
    with pytest.raises(ValueError, match="width, a frame or a box"):
        brix.voxelize(*arguments)
    with pytest.raises(TypeError, match="The faces must be whole numbers, not float64."):
        brix.voxelize(VERTICES, FACES * 1.0, voxel=0.25)


@pytest.mark.parametrize("binary", (True, False))
@pytest.mark.parametrize("swap", (True, False))
def test_stl_files_are_written_and_read(tmp_path, binary, swap):
    path = tmp_path / "größe.stl"
    brix.write_stl(path, VERTICES[FACES], binary=binary, swap_yz=swap)
    file = brix.read_stl(path, swap_yz=swap)
    assert np.array_equal(file.triangles, VERTICES[FACES].astype(np.float32))
    assert file.is_binary == binary and file.is_closed and file.is_sound and file.findings == [] and len(file) == 4
    assert file.bounds == ((0, 0, 0), (4, 4, 4)) and np.isclose(file.volume, np.linalg.det(VERTICES[1:]) / 6)
    assert brix.voxelize(file, voxel=0.25) == SOLID
    assert np.array_equal(brix.read_stl(path.read_bytes(), swap_yz=swap).triangles, file.triangles)


def test_damage_of_stl_files_is_told_and_other_files_are_os_errors(tmp_path):
    path = tmp_path / "cut.stl"
    brix.write_stl(path, VERTICES[FACES])
    path.write_bytes(path.read_bytes()[:-60])
    file = brix.read_stl(path)
    assert len(file) == 2 and not file.is_sound and file.open_edges > 0 and len(file.findings) > 0
    with pytest.raises(FileNotFoundError) as caught:
        brix.read_stl(tmp_path / "none.stl")
    assert caught.value.filename == str(tmp_path / "none.stl")
    with pytest.raises(OSError) as caught:
        brix.read_stl(tmp_path)
    assert caught.value.filename == str(tmp_path)
    with pytest.raises(FileNotFoundError):
        brix.write_stl(tmp_path / "none" / "file.stl", [])
