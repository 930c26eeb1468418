// A listener to lookups that leave their tables, for tools that tell users how far a model was driven beyond its data.
//
// A store has its own, in the field `watch`; nobody listens unless a tool sets it. A lookup inside its table never
// looks there.
#pragma once

struct KZB_TABLE;

namespace kzb {

class LookupWatch {
  public:
    virtual ~LookupWatch() = default;
    // `coordinates` [count] as the table saw them, of a lookup below or above a grid.
    virtual void left_table(const KZB_TABLE& table, const double* coordinates, int count) = 0;
};

}  // namespace kzb
