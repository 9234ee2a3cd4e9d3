#include "colour_space/matrix4x4.h"

#include <cmath>
#include <cstddef>

namespace tintora {

namespace {

using Rows = std::array<std::array<double, 4>, 4>;
using Direction = std::array<double, 3>;

Matrix4x4 inFloats(const Rows& rows) {
  Matrix4x4 m{};
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      m[row][column] = static_cast<float>(rows[row][column]);
    }
  }
  return m;
}

double dot(const Direction& a, const Direction& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Direction cross(const Direction& a, const Direction& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Direction unit(const Direction& v) {
  const double length = std::sqrt(dot(v, v));
  return {v[0] / length, v[1] / length, v[2] / length};
}

Direction direction(const Vector3& v) {
  return {v.x, v.y, v.z};
}

// Returns the determinant of the matrix without a row and a column.
double minorOf(const Matrix4x4& m, std::size_t row, std::size_t column) {
  std::array<Direction, 3> rest{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      rest[i][j] = m[i < row ? i : i + 1][j < column ? j : j + 1];
    }
  }
  return dot(rest[0], cross(rest[1], rest[2]));
}

double cofactor(const Matrix4x4& m, std::size_t row, std::size_t column) {
  const double minor = minorOf(m, row, column);
  return (row + column) % 2 == 0 ? minor : -minor;
}

}  // namespace

Matrix4x4 multiply(const Matrix4x4& a, const Matrix4x4& b) {
  Rows product{};
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      for (std::size_t i = 0; i < 4; ++i) {
        product[row][column] += static_cast<double>(a[row][i]) * static_cast<double>(b[i][column]);
      }
    }
  }
  return inFloats(product);
}

std::optional<Matrix4x4> inverse(const Matrix4x4& m) {
  double determinant = 0.0;
  for (std::size_t column = 0; column < 4; ++column) {
    determinant += static_cast<double>(m[0][column]) * cofactor(m, 0, column);
  }
  if (determinant == 0.0 || !std::isfinite(determinant)) return std::nullopt;

  Rows result{};
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      result[column][row] = cofactor(m, row, column) / determinant;
    }
  }
  return inFloats(result);
}

Matrix4x4 scaling(float factor) {
  Matrix4x4 m = identity4x4;
  for (std::size_t i = 0; i < 3; ++i) m[i][i] = factor;
  return m;
}

Matrix4x4 translation(const Vector3& by) {
  Matrix4x4 m = identity4x4;
  m[3] = {by.x, by.y, by.z, 1.0F};
  return m;
}

Matrix4x4 rotationX(float angle) {
  return rotationAbout({1.0F, 0.0F, 0.0F}, angle);
}

Matrix4x4 rotationY(float angle) {
  return rotationAbout({0.0F, 1.0F, 0.0F}, angle);
}

Matrix4x4 rotationZ(float angle) {
  return rotationAbout({0.0F, 0.0F, 1.0F}, angle);
}

// Returns cos I + (1 - cos) n n' + sin [n], transposed for row vectors.
Matrix4x4 rotationAbout(const Vector3& axis, float angle) {
  const Direction n = unit(direction(axis));
  const double sine = std::sin(static_cast<double>(angle));
  const double cosine = std::cos(static_cast<double>(angle));
  const double rest = 1.0 - cosine;
  return inFloats({{
      {rest * n[0] * n[0] + cosine, rest * n[0] * n[1] + sine * n[2],
       rest * n[0] * n[2] - sine * n[1], 0.0},
      {rest * n[1] * n[0] - sine * n[2], rest * n[1] * n[1] + cosine,
       rest * n[1] * n[2] + sine * n[0], 0.0},
      {rest * n[2] * n[0] + sine * n[1], rest * n[2] * n[1] - sine * n[0],
       rest * n[2] * n[2] + cosine, 0.0},
      {0.0, 0.0, 0.0, 1.0},
  }});
}

Matrix4x4 lookAt(const Vector3& eye, const Vector3& at, const Vector3& up) {
  const Direction place = direction(eye);
  const Direction zAxis =
      unit({static_cast<double>(at.x) - place[0], static_cast<double>(at.y) - place[1],
            static_cast<double>(at.z) - place[2]});
  const Direction xAxis = unit(cross(direction(up), zAxis));
  const Direction yAxis = cross(zAxis, xAxis);
  return inFloats({{
      {xAxis[0], yAxis[0], zAxis[0], 0.0},
      {xAxis[1], yAxis[1], zAxis[1], 0.0},
      {xAxis[2], yAxis[2], zAxis[2], 0.0},
      {-dot(xAxis, place), -dot(yAxis, place), -dot(zAxis, place), 1.0},
  }});
}

Matrix4x4 perspective(float fieldOfView, float aspect, float nearPlane, float farPlane) {
  const double yScale = 1.0 / std::tan(static_cast<double>(fieldOfView) / 2.0);
  const double nearest = nearPlane;
  const double farthest = farPlane;
  const double depth = farthest / (farthest - nearest);
  return inFloats({{
      {yScale / static_cast<double>(aspect), 0.0, 0.0, 0.0},
      {0.0, yScale, 0.0, 0.0},
      {0.0, 0.0, depth, 1.0},
      {0.0, 0.0, -nearest * depth, 0.0},
  }});
}

Vector4 transformed(const Vector4& v, const Matrix4x4& m) {
  Vector4 result{};
  for (std::size_t column = 0; column < 4; ++column) {
    double sum = 0.0;
    for (std::size_t i = 0; i < 4; ++i) {
      sum += static_cast<double>(v[i]) * static_cast<double>(m[i][column]);
    }
    result[column] = static_cast<float>(sum);
  }
  return result;
}

Vector3 transformedPoint(const Vector3& point, const Matrix4x4& m) {
  const Vector4 image = transformed({point.x, point.y, point.z, 1.0F}, m);
  return {image[0] / image[3], image[1] / image[3], image[2] / image[3]};
}

}  // namespace tintora
