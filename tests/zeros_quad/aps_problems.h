// The test problems of Alefeld, Potra and Shi ("Algorithm 748: enclosing zeros of continuous functions", ACM
// TOMS 21, 1995, table I): the 15 families with their parameters, 167 instances, each a function with an interval where it changes sign.
#pragma once

#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

namespace vek::testing {

struct ApsProblem {
  std::string name;
  std::function<double(double)> f;
  double a, b;
};

inline std::vector<ApsProblem> aps_problems() {
  std::vector<ApsProblem> p;
  const double pi = std::numbers::pi;
  auto add = [&](std::string name, std::function<double(double)> f, double a, double b) {
    p.push_back({std::move(name), std::move(f), a, b});
  };
  add("1", [](double x) { return std::sin(x) - x / 2; }, pi / 2, pi);
  for (int n = 1; n <= 10; ++n) {
    add("2." + std::to_string(n),
        [](double x) {
          double s = 0;
          for (int i = 1; i <= 20; ++i) s += std::pow(2 * i - 5, 2) / std::pow(x - i * i, 3);
          return -2 * s;
        },
        n * n + 1e-9, (n + 1) * (n + 1) - 1e-9);
  }
  for (auto [a, b] : {std::pair{-40.0, -1.0}, {-100.0, -2.0}, {-200.0, -3.0}}) {
    add("3", [a, b](double x) { return a * x * std::exp(b * x); }, -9, 31);
  }
  for (double a : {0.2, 1.0}) {
    for (int n = 4; n <= 12; n += 2) add("4a", [a, n](double x) { return std::pow(x, n) - a; }, 0, 5);
  }
  for (int n = 8; n <= 14; n += 2) add("4b", [n](double x) { return std::pow(x, n) - 1; }, -0.95, 4.05);
  add("5", [](double x) { return std::sin(x) - 0.5; }, 0, 1.5);
  for (int n : {1, 2, 3, 4, 5, 20, 40, 60, 80, 100}) {
    add("6", [n](double x) { return 2 * x * std::exp(-n) - 2 * std::exp(-n * x) + 1; }, 0, 1);
  }
  for (int n : {5, 10, 20}) {
    add("7", [n](double x) { return (1 + (1.0 - n) * (1.0 - n)) * x - (1 - n * x) * (1 - n * x); }, 0, 1);
  }
  for (int n : {2, 5, 10, 15, 20}) add("8", [n](double x) { return x * x - std::pow(1 - x, n); }, 0, 1);
  for (int n : {1, 2, 4, 5, 8, 15, 20}) {
    add("9", [n](double x) { return (1 + std::pow(1.0 - n, 4)) * x - std::pow(1 - n * x, 4); }, 0, 1);
  }
  for (int n : {1, 5, 10, 15, 20}) {
    add("10", [n](double x) { return std::exp(-n * x) * (x - 1) + std::pow(x, n); }, 0, 1);
  }
  for (int n : {2, 5, 15, 20}) add("11", [n](double x) { return (n * x - 1) / ((n - 1) * x); }, 0.01, 1);
  for (int n = 2; n <= 33; ++n) {
    add("12", [n](double x) { return std::pow(x, 1.0 / n) - std::pow(n, 1.0 / n); }, 1, 100);
  }
  add("13", [](double x) { return x == 0 ? 0.0 : x / std::exp(1 / (x * x)); }, -1, 4);
  for (int n = 1; n <= 40; ++n) {
    add("14", [n](double x) { return x >= 0 ? n / 20.0 * (x / 1.5 + std::sin(x) - 1) : -n / 20.0; }, -1e4,
        pi / 2);
  }
  std::vector<int> family15;
  for (int n = 20; n <= 40; ++n) family15.push_back(n);
  for (int n = 100; n <= 1000; n += 100) family15.push_back(n);
  for (int n : family15) {
    add("15",
        [n](double x) {
          if (x > 2e-3 / (1 + n)) return std::numbers::e - 1.859;
          if (x < 0) return -0.859;
          return std::exp((n + 1) * x / 2 * 1000) - 1.859;
        },
        -1e4, 1e-4);
  }
  return p;
}

}  // namespace vek::testing
