// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/exception.h"
#include "foundation/error.h"

#include <gtest/gtest.h>

#include <string>

namespace havrel {

/// Expects that \p call raises "Bug" with \p reason, and that the error's sentence holds \p fault.
template<class Call>
void expectBug(Call call, const char* reason, const std::string& fault)
{
    try {
        (void)call();
        ADD_FAILURE() << "raised nothing";
    } catch (const HVException& exception) {
        EXPECT_EQ(exception.name().toStdString(), "Bug");
        EXPECT_EQ(exception.reason().toStdString(), reason);
        const QVariant wrapped = exception.detail(detail_key::kWrappedError);
        ASSERT_TRUE(wrapped.canConvert<Error>());
        EXPECT_EQ(wrapped.value<Error>().domain(), error_domain::kCocoa);
        const std::string sentence = wrapped.value<Error>().localizedDescription().toStdString();
        EXPECT_NE(sentence.find(fault), std::string::npos) << sentence;
    }
}

} // namespace havrel
