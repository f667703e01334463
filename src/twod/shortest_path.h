// The shortest path through a lattice of (position, state) nodes, as the encoders with a
// choice of modes search it: every node keeps its least cost so far and the step that
// reached it, and the cheapest path is walked back from its end.
#pragma once

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <vector>

namespace barcode_orv::internal {

inline constexpr int kUnreachable = INT_MAX / 2;

template <typename Action>
struct PathNode {
  int cost = kUnreachable;
  int from_pos = -1;
  int from_state = -1;
  Action action{};
};

// Positions 0..length, `States` states each; a node is reached from an earlier node or
// from an earlier state at the same position.
template <typename Action, int States>
class Lattice {
 public:
  using Node = PathNode<Action>;

  Lattice() = default;
  explicit Lattice(size_t length) { Reset(length); }

  // Every position starts as a copy of one unreached column, which is cheaper than
  // constructing each node in place.
  void Reset(size_t length) { nodes_.assign(length + 1, std::array<Node, States>{}); }
  std::array<Node, States>& operator[](size_t pos) { return nodes_[pos]; }
  const std::array<Node, States>& operator[](size_t pos) const { return nodes_[pos]; }
  size_t length() const { return nodes_.empty() ? 0 : nodes_.size() - 1; }

  const Node& node(size_t pos, int state) const { return nodes_[pos][static_cast<size_t>(state)]; }
  Node& node(size_t pos, int state) { return nodes_[pos][static_cast<size_t>(state)]; }
  int cost(size_t pos, int state) const { return node(pos, state).cost; }
  bool reached(size_t pos, int state) const { return cost(pos, state) < kUnreachable; }

  // Keeps the step when it is strictly cheaper: among equal costs the first one found stays.
  void Relax(size_t pos, int state, int cost, size_t from_pos, int from_state, Action action) {
    Node& target = node(pos, state);
    if (cost >= target.cost) return;
    target = {cost, static_cast<int>(from_pos), from_state, action};
  }

  struct Step {
    size_t pos;
    int state;
    const Node* node;
  };
  // The steps from the start to (pos, state), in order; a node whose action is `none`
  // (or that has no predecessor) begins the path.
  std::vector<Step> Path(size_t pos, int state, Action none = Action{}) const {
    std::vector<Step> steps;
    for (int p = static_cast<int>(pos), s = state; p >= 0 && s >= 0;) {
      const Node& n = node(static_cast<size_t>(p), s);
      if (n.action == none) break;
      steps.push_back({static_cast<size_t>(p), s, &n});
      p = n.from_pos;
      s = n.from_state;
    }
    std::reverse(steps.begin(), steps.end());
    return steps;
  }

 private:
  std::vector<std::array<Node, States>> nodes_;
};

}  // namespace barcode_orv::internal
