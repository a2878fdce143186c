// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace host {

// --help in lines of 80 characters.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter();
  std::string make_footer(const CLI::App* app) const override;
  std::string make_option_opts(const CLI::Option* option) const override;
  std::string make_option_desc(const CLI::Option* option) const override;
  std::string make_subcommand(const CLI::App* command) const override;
};

}  // namespace host
